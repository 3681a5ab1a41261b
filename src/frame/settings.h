#pragma once
// Every section and key of fenwork.ini with its default, in one place. Code reads settings
// through these constants (ini.get(keys::FichBak)), never through scattered literals.
#include <QString>

namespace fenwork {

class Paths;

struct SettingKey
{
    const char *section;
    const char *key;
    const char *def; // the default when the key is missing; see computedDefault for the others
    // Keys whose default depends on the machine (folders, screen, tool paths).
    enum class Computed { None, Documents, ToolAbc2midi, ToolAbcm2ps, ToolAbc2abc, ToolMidi2abc,
                          FmtFile, ScreenWidth, ScreenHeight, PanelX, PanelYD, PanelYG };
    Computed computed = Computed::None;

    QString sectionName() const { return QString::fromLatin1(section); }
    QString keyName() const { return QString::fromLatin1(key); }
    QString defaultValue() const { return QString::fromUtf8(def); }
};

// A key of a numbered family: "OF" + n, "R" + n, "ToucheProgr" + n.
struct SettingFamily
{
    const char *section;
    const char *prefix;
    QString keyName(int n) const { return QString::fromLatin1(prefix) + QString::number(n); }
};

namespace keys {
using C = SettingKey::Computed;
// General
inline constexpr SettingKey Lang{"General", "lang", ""};
inline constexpr SettingKey FichBak{"General", "FichBak", "1"}; // empty at start-up means first run
inline constexpr SettingKey DirDef{"General", "dirDef", "", C::Documents};
inline constexpr SettingKey DirHtm{"General", "dirHtm", ""};
inline constexpr SettingKey ModeleDef{"General", "ModeleDef", ""};
inline constexpr SettingKey ABCstr{"General", "ABCstr", "0"};
inline constexpr SettingKey NoSaveHdrFile{"General", "noSaveHdrFile", "0"};
inline constexpr SettingKey Ask4alias{"General", "Ask4alias", "1"};
inline constexpr SettingKey KeepLastExportDir{"General", "keepLastExportDir", "1"};
inline constexpr SettingKey FileExpand{"General", "fileExpand", "1"};
inline constexpr SettingKey ShowDoublons{"General", "showDoublons", "0"};
inline constexpr SettingKey SelFirstTune{"General", "selFirstTune", "0"};
inline constexpr SettingKey CompactSet{"General", "compactSet", "1"};
inline constexpr SettingKey CheckNewVersion{"General", "checkNewVersion", "1"};
inline constexpr SettingKey ShowTips{"General", "showTips", "1"};
inline constexpr SettingKey DblClcIdx{"General", "DblClcIdx", "0"};
inline constexpr SettingKey TrashMax{"General", "TrashMax", "50"};
inline constexpr SettingKey DronePitch{"General", "dronePitch", "0"};
inline constexpr SettingKey Version{"General", "Version", ""};
// OpenFiles
inline constexpr SettingKey Rouvrir{"OpenFiles", "Rouvrir", "1"};
inline constexpr SettingKey NbFiles{"OpenFiles", "nbFiles", "0"};
inline constexpr SettingFamily OpenFile{"OpenFiles", "OF"};
// Recents
inline constexpr SettingFamily Recent{"Recents", "R"};
// TempList
inline constexpr SettingKey TempListContents{"TempList", "contents", ""};
// Window
inline constexpr SettingKey UseRecordedData{"Window", "UseRecordedData", "1"};
inline constexpr SettingKey WindowState{"Window", "WindowState", "0"};
inline constexpr SettingKey Top{"Window", "Top", "300"};
inline constexpr SettingKey Left{"Window", "Left", "500"};
inline constexpr SettingKey Width{"Window", "Width", "", C::ScreenWidth};
inline constexpr SettingKey Height{"Window", "Height", "", C::ScreenHeight};
inline constexpr SettingKey PanelX{"Window", "PanelX", "", C::PanelX};
inline constexpr SettingKey PanelYD{"Window", "PanelYD", "", C::PanelYD};
inline constexpr SettingKey PanelYG{"Window", "PanelYG", "", C::PanelYG};
// Tools
inline constexpr SettingKey Tool2midi{"Tools", "Tool2midi", "", C::ToolAbc2midi};
inline constexpr SettingKey Cmd2midi{"Tools", "cmd2midi", " -o "};
inline constexpr SettingKey Tool2ps{"Tools", "Tool2ps", "", C::ToolAbcm2ps};
inline constexpr SettingKey Cmd2ps{"Tools", "cmd2ps", " -s0.65 -O "};
inline constexpr SettingKey Tool2abc{"Tools", "Tool2abc", "", C::ToolAbc2abc};
inline constexpr SettingKey Cmd2abc{"Tools", "cmd2abc", " -t "};
inline constexpr SettingKey ToolMidi2abc{"Tools", "ToolMidi2abc", "", C::ToolMidi2abc};
inline constexpr SettingKey CmdMidi2abc{"Tools", "cmdMidi2abc", " -o "};
inline constexpr SettingKey FmtFile{"Tools", "FmtFile", "", C::FmtFile};
inline constexpr SettingKey VisuBitmap{"Tools", "VisuBitmap", ""}; // empty: the desktop's viewer
inline constexpr SettingKey VisuPdf{"Tools", "VisuPdf", ""};
// Player
inline constexpr SettingKey TempoDef{"Player", "tempoDef", "100"};
inline constexpr SettingKey NbRepeat{"Player", "nbRepeat", "1"};
inline constexpr SettingKey DefaultGM{"Player", "DefaultGM", "0"};
inline constexpr SettingKey SoundFont{"Player", "SoundFont", ""}; // empty: the largest GM font installed
// Editeur
inline constexpr SettingKey SeeScore{"Editeur", "seeScore", "1"};
inline constexpr SettingKey SeeKbd{"Editeur", "SeeKbd", "1"};
inline constexpr SettingKey SaveZoom{"Editeur", "SaveZoom", "1"};
inline constexpr SettingKey Zoom{"Editeur", "Zoom", "110"};
inline constexpr SettingKey ScrollHScore{"Editeur", "ScrollHScore", ""};
inline constexpr SettingKey ZoomMax{"Editeur", "ZoomMax", "130"};
inline constexpr SettingKey ScrollHScoreMax{"Editeur", "ScrollHScoreMax", ""};
inline constexpr SettingKey FontName{"Editeur", "FontName", "Monospace"};
inline constexpr SettingKey FontSize{"Editeur", "FontSize", "10"};
inline constexpr SettingKey CloseBrackets{"Editeur", "CloseBrackets", "1"};
inline constexpr SettingKey UseHdr{"Editeur", "useHdr", "1"};
inline constexpr SettingKey TablaturesIndex{"Editeur", "tablaturesIndex", "0"};
inline constexpr SettingFamily ToucheProgr{"Editeur", "ToucheProgr"};
// Export, LstPara
inline constexpr SettingKey PrintResolution{"Export", "printResolution", "120"};
inline constexpr SettingKey LstSeparator{"LstPara", "separator", "/"};
// The version check's server and the address the help menu writes to: empty, we name no server
// and no address we do not run; the rows that need them stay unavailable until they are set.
inline constexpr SettingKey UpdateServer{"General", "updateServer", ""};
inline constexpr SettingKey ContactAddress{"General", "contactAddress", ""};
// The score's zoom follows the panel's width ("1"), or the slider alone.
inline constexpr SettingKey ZoomFit{"Editeur", "ZoomFit", "1"};
} // namespace keys

// The default of a computed key on this machine. `paths` gives the program folder; screen sizes
// come from the caller (the core has no screen), 0 when unknown.
QString computedDefault(const SettingKey &key, const Paths &paths, int screenWidth = 0,
                        int screenHeight = 0, int windowWidth = 0, int windowHeight = 0);

// The path of one of the four converters: <program>/tools/<name> when it exists, else the
// program of that name on PATH, else /usr/bin/<name>.
QString defaultToolPath(const Paths &paths, const QString &name);

} // namespace fenwork
