#pragma once
// The values of the export dialog, each standing for one line of the engraver's format file, and
// the reading and writing of that file. Lines the dialog does not know live in the hand-written
// text, so that nothing a user wrote is lost on the way through the dialog.
#include <QString>
#include <QStringList>

#include <array>

namespace fenwork {

class UserDialogs;

struct FormatModel
{
    static constexpr int kSlots = 8;

    // Lengths in centimetres: the text box (written as it stands) and its slider (tenths).
    std::array<QString, kSlots> space;
    std::array<int, kSlots> spaceSlider {};
    // Fonts: a name from the list (or one read that the list lacked), empty for none; size 0 none.
    std::array<QString, kSlots> font;
    std::array<int, kSlots> fontSize {};
    std::array<bool, kSlots> bold {};
    std::array<bool, kSlots> italic {};

    int scale = 75; // percent
    QString staffSep; // points
    int staffSepSlider = 3;
    int paper = 0; // A4, Letter, Legal
    int orientation = 1; // 0 landscape, 1 portrait
    std::array<QString, 3> header; // left, centre, right
    std::array<QString, 3> footer;
    bool oneTunePg = false;
    bool splitTune = false;
    bool prntTempo = true;
    bool continueAll = false;
    bool addTabs = false;
    int tabsRow = 0; // row of lst_Tabs; a row beyond the list is kept as read
    int ttr = 1; // 0 title on the left, 1 centred
    bool prntX = false;
    int composer = 2; // left, centre, right
    bool printP = true;
    bool musicOnly = false;
    QString handWr;

    // Slider ranges of the dialog.
    static int spaceMaximum(int slot) { return slot == 4 ? 210 : 100; }
    static constexpr int kScaleMin = 25, kScaleMax = 150, kStaffSepMin = 3, kStaffSepMax = 150;

    // The line keywords of the length and font slots, with their trailing blank.
    static QString spaceKeyword(int slot);
    static QString fontKeyword(int slot);
    // The font names the dialog offers.
    static const QStringList &fontNames();
    // "a4", "letter" or "legal".
    QString paperName() const;
};

// Fills `model` from the format file `path` ("Context: ReadFormat" through `ui` on an error). A
// missing file leaves the model as it is. Returns false only on an error.
bool ReadFormat(FormatModel &model, const QString &path, UserDialogs *ui = nullptr);
// Fills `model` from a format file's text.
void readFormatText(FormatModel &model, const QString &text);

// The format file's text, every line ended by CR LF, in the fixed order of the dialog.
QString buildFormatText(const FormatModel &model);
// Writes the format file in one go and returns the paper name; empty with `error` on failure.
QString BuildFormat(const FormatModel &model, const QString &path, QString *error = nullptr);

} // namespace fenwork
