#pragma once
// Where the help menu's rows lead: our help pages by language and topic, the contact address, the
// update server's pages, the language folder. Plain addresses, so that tests check them without
// a desktop.
#include <QString>
#include <QUrl>

namespace fenwork {

class Paths;

// The help pages of a language: "Français" reads the French pages, any other the English ones.
QString helpFolder(const Paths &paths, const QString &languageName);
// A topic's place in the help: the ABC guide holds the notation's topics (101 to 147), the
// program's guide everything else; topic 0 is the guide's beginning. Anchors are "t" + topic.
QUrl helpUrl(const Paths &paths, const QString &languageName, int topic = 0);
// The help topic of the tempo tapper's window.
inline constexpr int kTempoHelpTopic = 160;

// "mailto:" the address with the subject "Fennelworks " + version; empty without an address.
QUrl contactUrl(const QString &address);
// The server's page `path` ("/fenwk.php"); empty without a server. A server given without a
// scheme is taken as https.
QUrl serverUrl(const QString &server, const QString &path);
// The language files' folder, for a translator to work in.
QUrl languageFolderUrl(const Paths &paths);

} // namespace fenwork
