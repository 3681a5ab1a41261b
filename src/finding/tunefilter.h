#pragma once
// The tune filter: the conditions of the search panel become one regular expression, run over
// the text of every tune; a tune that fails is greyed in the tree, not removed. The colour of a
// tune node is the only store of the result.
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <memory>

namespace fenwork {

class AppContext;
class ChoiceList;
class RegExp;

// The field rows: "%" (comment lines), "A:" to "Z:", "m:", "r:", "s:", "u:", "w:", "%%MIDI".
constexpr int kFilterRowCount = 33;
QString filterRowCaption(int row);
// The row whose caption is exactly `caption`, or -1.
int filterRowOfCaption(const QString &caption);

// A box's text as a piece of pattern: blanks trimmed at both ends, "*" made ".*" and "?" made
// ".?". Everything else keeps its regular expression meaning.
QString translateCondition(const QString &text);

// What the boxes of the search panel hold.
struct FilterConditions
{
    QString melody;     // txt_mus
    QStringList fields; // txt_Chp rows 0 to 32 (missing rows count as empty)
    QString anywhere;   // txt_anywhere
    bool ignoreCase = false; // chk_noCaseSens
    bool invert = false;     // chk_invSearch
    bool startOnly = false;  // chk_startOnly

    FilterConditions() : fields(kFilterRowCount) { }
    QString field(int row) const { return fields.value(row); }
};

// The pattern of a set of conditions: one alternative per condition, each matching a whole line,
// melody first, then anywhere, then the rows in order. `description` lists the conditions, one
// a line, for the messages.
struct FilterPattern
{
    QString pattern;
    QString description;
    int conditionCount = 0;
};
FilterPattern buildFilterPattern(const FilterConditions &conditions);

// lst_domaineFind
enum class FilterDomain { AllTunes = 0, ShownTunes = 1 };
// lst_resFind
enum class FilterResults { ReplaceList = 0, AddToList = 1, LeaveList = 2 };

struct FilterOutcome
{
    enum class Status {
        Found,          // at least one tune fits
        NothingFound,   // every tested tune greyed; the "<noTuneFound>" box was shown
        InvalidPattern, // the "<regexFailed>" box was shown; no tune was tested
        Failed          // stopped on the way through "Context: Search"
    };
    Status status = Status::NothingFound;
    QString description;
    // The tunes that fit, in tree order: what goes to the choice list when the policy adds.
    QStringList keys;
    QStringList captions;
    int tested = 0;
};

// A stretch of the editor's text to mark in yellow (65535): positions are indexes into the text
// given.
struct HighlightRange
{
    qsizetype start = 0;
    qsizetype length = 0;
    bool operator==(const HighlightRange &other) const = default;
};

// The filter of one run: its active flag and the pattern kept between searches.
class TuneFilter
{
public:
    explicit TuneFilter(AppContext &app);
    ~TuneFilter();
    TuneFilter(const TuneFilter &) = delete;
    TuneFilter &operator=(const TuneFilter &) = delete;

    // Set by a search, cleared by clear(); the tune display highlights while it is set. It
    // stays set when the filtered files are closed.
    bool isActive() const { return m_active; }
    // The pattern of the last search.
    QString pattern() const;

    // The working list that a search fills; none: the outcome still lists what was found.
    void setChoiceList(ChoiceList *list) { m_choiceList = list; }
    ChoiceList *choiceList() const { return m_choiceList; }
    // Told when the colours and the flag are settled, before any closing message: by clear()
    // with false, at the end of a search that ran its course with true.
    std::function<void(bool searched)> settled;

    // bt_Search_Click: greys the tunes that fail, fills the choice list as `results` says,
    // enables "mnu_saveTunesFltr" when something was found, and shows the messages.
    FilterOutcome search(const FilterConditions &conditions, FilterDomain domain, FilterResults results);
    // bt_SupprFltr_Click: every tune of the open files shown again (the trash box is left
    // alone), "mnu_saveTunesFltr" disabled, the flag cleared.
    void clear();

    // What to mark in a tune's text shown in the editor, with the boxes as they stand now:
    // for each line the last pattern matches, the anywhere condition, else the row whose marker
    // starts the line, else the wider melody pattern. Nothing while the filter is off.
    QVector<HighlightRange> ColorerFind(const QString &text, const FilterConditions &current);

private:
    AppContext &m_app;
    std::unique_ptr<RegExp> m_engine;    // the pattern between searches: Global, MultiLine
    std::unique_ptr<RegExp> m_highlight; // one line at a time: Global, no MultiLine
    ChoiceList *m_choiceList = nullptr;
    bool m_active = false;
};

} // namespace fenwork
