#include "finding/tunefilter.h"

#include "collections/choicelist.h"
#include "finding/melodyfragment.h"
#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/regexp.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

namespace fenwork {

namespace {

const QString kSaveFiltered = QStringLiteral("mnu_saveTunesFltr");
const QString kRule = QStringLiteral("---------");

// The tunes a search walks: those of every open file, never the trash box's.
template <typename Visit>
void forEachSearchedTune(const WorkspaceTree &tree, Visit visit)
{
    const Node *root = tree.root();
    if (!root)
        return;
    for (int f = 1; f < root->childCount(); ++f) {
        const Node *body = root->child(f)->child(1);
        if (!body || body->Image != Pic::BdyFile)
            continue;
        for (Node *tune : body->children())
            if (!visit(tune))
                return;
    }
}

} // namespace

QString filterRowCaption(int row)
{
    if (row == 0)
        return QStringLiteral("%");
    if (row >= 1 && row <= 26)
        return QString(QChar(u'A' + (row - 1))) + u':';
    switch (row) {
    case 27: return QStringLiteral("m:");
    case 28: return QStringLiteral("r:");
    case 29: return QStringLiteral("s:");
    case 30: return QStringLiteral("u:");
    case 31: return QStringLiteral("w:");
    case 32: return QStringLiteral("%%MIDI");
    default: return {};
    }
}

int filterRowOfCaption(const QString &caption)
{
    for (int row = 0; row < kFilterRowCount; ++row)
        if (filterRowCaption(row) == caption)
            return row;
    return -1;
}

QString translateCondition(const QString &text)
{
    QString out = trimBlanks(text);
    out.replace(u'*', QStringLiteral(".*"));
    out.replace(u'?', QStringLiteral(".?"));
    return out;
}

FilterPattern buildFilterPattern(const FilterConditions &conditions)
{
    FilterPattern p;
    const QString melody = trimBlanks(conditions.melody);
    if (!melody.isEmpty()) {
        ++p.conditionCount;
        p.description += QStringLiteral("ABC:") + melody + CRLF;
        p.pattern += melodySearchAlternative(melody, conditions.startOnly);
    }
    const QString anywhere = translateCondition(conditions.anywhere);
    if (!anywhere.isEmpty()) {
        p.description += anywhere + CRLF;
        ++p.conditionCount;
        p.pattern += QStringLiteral("^.*") + anywhere + QStringLiteral(".*$|");
    }
    for (int row = 0; row < kFilterRowCount; ++row) {
        const QString condition = translateCondition(conditions.field(row));
        if (condition.isEmpty())
            continue;
        const QString caption = filterRowCaption(row);
        p.description += caption + condition + CRLF;
        ++p.conditionCount;
        p.pattern += u'^' + caption + QStringLiteral(".*") + condition + QStringLiteral(".*$|");
    }
    if (p.pattern.endsWith(u'|'))
        p.pattern.chop(1);
    return p;
}

TuneFilter::TuneFilter(AppContext &app)
    : m_app(app), m_engine(std::make_unique<RegExp>()), m_highlight(std::make_unique<RegExp>())
{
    m_engine->Global = true;
    m_engine->MultiLine = true;
    m_highlight->Global = true;
    m_highlight->MultiLine = false;
}

TuneFilter::~TuneFilter() = default;

QString TuneFilter::pattern() const
{
    return m_engine->Pattern;
}

void TuneFilter::clear()
{
    WorkspaceTree &tree = m_app.tree();
    forEachSearchedTune(tree, [&tree](Node *tune) {
        tree.setForeColor(tune, color::TuneSelected);
        return true;
    });
    m_app.commands().setEnabled(kSaveFiltered, false);
    m_active = false;
    if (settled)
        settled(false);
}

FilterOutcome TuneFilter::search(const FilterConditions &conditions, FilterDomain domain, FilterResults results)
{
    UserDialogs &ui = m_app.ui();
    FilterOutcome outcome;
    QString failure;
    {
        BusyScope busy(ui);
        if (domain == FilterDomain::AllTunes)
            clear();
        m_engine->IgnoreCase = conditions.ignoreCase;
        const FilterPattern built = buildFilterPattern(conditions);
        outcome.description = built.description;
        m_engine->Pattern = built.pattern;
        // Checked before the walk rather than on the first tune, so that a bad pattern is told
        // even when no tune is left to test.
        if (!m_engine->isValid()) {
            outcome.status = FilterOutcome::Status::InvalidPattern;
        } else {
            const bool addsToList = m_choiceList && results != FilterResults::LeaveList;
            if (addsToList && results == FilterResults::ReplaceList)
                m_choiceList->clear();
            // Gathered first and appended in one go: a list view follows one notice, not one
            // a tune.
            QVector<ChoiceItem> found;
            WorkspaceTree &tree = m_app.tree();
            const TuneStore &store = m_app.store();
            const int needed = built.conditionCount;
            forEachSearchedTune(tree, [&](Node *tune) {
                if (domain == FilterDomain::ShownTunes && tune->ForeColor == color::TuneLeftOut)
                    return true;
                ++outcome.tested;
                // A tune fits when at least as many lines match as there are conditions: one
                // pass, no bookkeeping of which condition a line met.
                bool fits = true;
                if (needed > 0)
                    fits = m_engine->Execute(store.GetStringTune(tune->Key, false, 0)).size() >= needed;
                if (conditions.invert)
                    fits = !fits;
                if (!fits) {
                    tree.setForeColor(tune, color::TuneLeftOut);
                    return true;
                }
                outcome.keys.append(tune->Key);
                outcome.captions.append(tune->Text);
                if (addsToList && conditions.invert && m_choiceList->contains(tune->Key)) {
                    // Only the inverted search stumbles on a tune already listed; the other
                    // one passes over it.
                    failure = QStringLiteral("Key is not unique in the choice list: ") + tune->Key;
                    return false;
                }
                if (addsToList)
                    found.append({ tune->Key, tune->Text, 1 });
                return true;
            });
            if (addsToList)
                m_choiceList->addAll(found);
            if (!failure.isEmpty()) {
                outcome.status = FilterOutcome::Status::Failed;
            } else {
                m_active = true;
                outcome.status = outcome.keys.isEmpty() ? FilterOutcome::Status::NothingFound
                                                        : FilterOutcome::Status::Found;
            }
        }
    }
    const bool ranItsCourse = outcome.status == FilterOutcome::Status::Found
                              || outcome.status == FilterOutcome::Status::NothingFound;
    if (ranItsCourse && settled)
        settled(true);
    switch (outcome.status) {
    case FilterOutcome::Status::InvalidPattern:
        ui.message(outcome.description + kRule + CRLF + m_app.text(QStringLiteral("Msg"), QStringLiteral("<regexFailed>")));
        break;
    case FilterOutcome::Status::Found:
        m_app.commands().setEnabled(kSaveFiltered, true);
        break;
    case FilterOutcome::Status::NothingFound:
        ui.message(outcome.description + kRule + CRLF + m_app.text(QStringLiteral("Msg"), QStringLiteral("<noTuneFound>")),
                   UserDialogs::Icon::Information);
        break;
    case FilterOutcome::Status::Failed:
        ui.contextError(QStringLiteral("Search"), failure);
        break;
    }
    return outcome;
}

QVector<HighlightRange> TuneFilter::ColorerFind(const QString &text, const FilterConditions &current)
{
    QVector<HighlightRange> ranges;
    if (!m_active)
        return ranges;
    m_engine->IgnoreCase = current.ignoreCase;
    m_highlight->IgnoreCase = current.ignoreCase;
    if (!m_engine->isValid())
        return ranges;
    const QVector<RegExpMatch> lines = m_engine->Execute(text);
    for (const RegExpMatch &line : lines) {
        QString sub;
        if (!current.anywhere.isEmpty()) {
            sub = translateCondition(current.anywhere);
        } else {
            int row = 0;
            while (row < kFilterRowCount && !line.value.startsWith(filterRowCaption(row)))
                ++row;
            sub = row < kFilterRowCount ? translateCondition(current.field(row)) : melodyHighlightPattern(current.melody);
        }
        m_highlight->Pattern = sub;
        // A box changed since the search may no longer hold a valid pattern: that line goes
        // unmarked rather than stopping the display.
        if (!m_highlight->isValid())
            continue;
        for (const RegExpMatch &part : m_highlight->Execute(line.value))
            if (part.length > 0)
                ranges.append({line.firstIndex + part.firstIndex, part.length});
    }
    return ranges;
}

} // namespace fenwork
