#include "editing/widgets/insertiondialog.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace fenwork {

namespace {
const QString kInser = QStringLiteral("InserAuto");
const QString kMsg = QStringLiteral("Msg");
} // namespace

InsertionDialog::InsertionDialog(AppContext &app, QWidget *parent)
    : QDialog(parent)
    , m_app(app)
    , m_entries(loadInsertions(app))
{
    setObjectName(QStringLiteral("fp_inser"));
    const auto text = [&app](const QString &section, const char *key) {
        return app.text(section, QString::fromLatin1(key));
    };
    setWindowTitle(text(kInser, "<autoInsertion>"));

    m_codes = new QListWidget(this);
    m_codes->setObjectName(QStringLiteral("lst_code"));
    m_codes->setMinimumWidth(m_codes->fontMetrics().horizontalAdvance(QStringLiteral("NewCode")) * 2);
    m_code = new QLineEdit(this);
    m_code->setObjectName(QStringLiteral("txt_code"));
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txt_remp"));
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto *info = new QLabel(text(kInser, "<info>"), this);
    info->setObjectName(QStringLiteral("lab_info"));
    info->setWordWrap(true);

    auto *codeLabel = new QLabel(text(kInser, "<textToReplace>"), this);
    codeLabel->setBuddy(m_code);
    auto *textLabel = new QLabel(text(kInser, "<textToInsert>"), this);
    textLabel->setBuddy(m_text);
    auto *fields = new QGridLayout;
    fields->addWidget(m_codes, 0, 0, 4, 1);
    fields->addWidget(codeLabel, 0, 1);
    fields->addWidget(m_code, 1, 1);
    fields->addWidget(textLabel, 2, 1);
    fields->addWidget(m_text, 3, 1);
    fields->setColumnStretch(0, 1);
    fields->setColumnStretch(1, 2);
    fields->setRowStretch(3, 1);

    auto *buttons = new QDialogButtonBox(this);
    const auto button = [&](const char *name, const QString &caption, const char *icon) {
        auto *b = buttons->addButton(caption, QDialogButtonBox::ActionRole);
        b->setObjectName(QString::fromLatin1(name));
        b->setIcon(QIcon::fromTheme(QString::fromLatin1(icon)));
        b->setAutoDefault(false);
        return b;
    };
    QPushButton *add = button("bt_new", text(kInser, "<newInsertion>"), "list-add");
    m_delete = button("bt_sup", text(kInser, "<delete>"), "list-remove");
    QPushButton *deleteAll = button("bt_suptout", text(kInser, "<deleteAll>"), "edit-clear-all");
    m_insert = button("bt_Inser", text(kInser, "<insert>"), "insert-text");
    QPushButton *close
        = buttons->addButton(text(QStringLiteral("Common"), "<close>"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("bt_esc"));
    close->setIcon(QIcon::fromTheme(QStringLiteral("window-close")));

    // Kept with their keys, so that a change of language retitles the open window.
    m_captions = { { info, kInser, QStringLiteral("<info>") }, { codeLabel, kInser, QStringLiteral("<textToReplace>") },
        { textLabel, kInser, QStringLiteral("<textToInsert>") }, { add, kInser, QStringLiteral("<newInsertion>") },
        { m_delete, kInser, QStringLiteral("<delete>") }, { deleteAll, kInser, QStringLiteral("<deleteAll>") },
        { m_insert, kInser, QStringLiteral("<insert>") }, { close, QStringLiteral("Common"), QStringLiteral("<close>") } };

    auto *whole = new QVBoxLayout(this);
    whole->addLayout(fields, 1);
    whole->addWidget(info);
    whole->addWidget(buttons);

    connect(m_codes, &QListWidget::currentRowChanged, this, &InsertionDialog::lst_code_Click);
    connect(m_codes, &QListWidget::itemDoubleClicked, this, &InsertionDialog::bt_Inser_Click);
    connect(m_code, &QLineEdit::textEdited, this, &InsertionDialog::txt_code_Change);
    connect(m_text, &QPlainTextEdit::textChanged, this, &InsertionDialog::txt_remp_Change);
    connect(add, &QPushButton::clicked, this, &InsertionDialog::bt_new_Click);
    connect(m_delete, &QPushButton::clicked, this, &InsertionDialog::bt_sup_Click);
    connect(deleteAll, &QPushButton::clicked, this, &InsertionDialog::bt_suptout_Click);
    connect(m_insert, &QPushButton::clicked, this, &InsertionDialog::bt_Inser_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    fillList(m_entries.isEmpty() ? -1 : 0);
    resize(sizeHint().expandedTo(QSize(560, 360)));
}

InsertionDialog::~InsertionDialog() = default;

void InsertionDialog::fillList(int row)
{
    {
        const QSignalBlocker block(m_codes);
        m_codes->clear();
        for (const InsertionEntry &entry : std::as_const(m_entries))
            m_codes->addItem(entry.code);
        m_codes->setCurrentRow(row);
    }
    lst_code_Click(row);
}

void InsertionDialog::lst_code_Click(int row)
{
    const bool chosen = row >= 0 && row < m_entries.size();
    m_showing = true;
    m_code->setText(chosen ? m_entries.at(row).code : QString());
    QString shown = chosen ? m_entries.at(row).text : QString();
    m_text->setPlainText(shown.replace(CRLF, QStringLiteral("\n")));
    m_showing = false;
    for (QWidget *w : { static_cast<QWidget *>(m_code), static_cast<QWidget *>(m_text),
             static_cast<QWidget *>(m_delete), static_cast<QWidget *>(m_insert) })
        w->setEnabled(chosen);
}

void InsertionDialog::txt_code_Change(const QString &code)
{
    const int row = m_codes->currentRow();
    if (m_showing || row < 0)
        return;
    if (code.contains(u' ')) {
        // The code is one word: the blank typed is taken back.
        const int caret = m_code->cursorPosition();
        m_code->setText(m_entries.at(row).code);
        m_code->setCursorPosition(qMax(0, caret - 1));
        m_app.ui().message(m_app.text(kMsg, QStringLiteral("<spaceForbid>")));
        return;
    }
    m_entries[row].code = code;
    m_codes->item(row)->setText(code);
    save();
}

void InsertionDialog::txt_remp_Change()
{
    const int row = m_codes->currentRow();
    if (m_showing || row < 0)
        return;
    QString text = m_text->toPlainText();
    m_entries[row].text = text.replace(u'\n', CRLF);
    save();
}

void InsertionDialog::bt_new_Click()
{
    m_entries.append({ QStringLiteral("NewCode"), QStringLiteral("NewText") });
    save();
    fillList(int(m_entries.size()) - 1);
    m_code->setFocus();
    m_code->selectAll();
}

void InsertionDialog::bt_sup_Click()
{
    const int row = m_codes->currentRow();
    if (row < 0 || row >= m_entries.size())
        return;
    m_entries.removeAt(row);
    save();
    fillList(qMin(row, int(m_entries.size()) - 1));
}

void InsertionDialog::bt_suptout_Click()
{
    if (m_app.ui().question(m_app.text(kMsg, QStringLiteral("<delAllInser>"))) != UserDialogs::Answer::Yes)
        return;
    m_entries.clear();
    save();
    fillList(-1);
}

void InsertionDialog::bt_Inser_Click()
{
    const int row = m_codes->currentRow();
    if (row < 0 || row >= m_entries.size())
        return;
    if (!insertText || !insertText(m_entries.at(row).text))
        m_app.ui().message(m_app.text(kMsg, QStringLiteral("<lockedText>")));
}

void InsertionDialog::save()
{
    QString error;
    if (!writeInsAuto(insAutoFile(m_app), m_entries, &error))
        m_app.ui().contextError(QStringLiteral("fp_inser"), error);
}

void InsertionDialog::LoadLang()
{
    setWindowTitle(m_app.text(kInser, QStringLiteral("<autoInsertion>")));
    for (const auto &[widget, section, key] : std::as_const(m_captions)) {
        if (auto *label = qobject_cast<QLabel *>(widget))
            label->setText(m_app.text(section, key));
        else if (auto *button = qobject_cast<QPushButton *>(widget))
            button->setText(m_app.text(section, key));
    }
}

} // namespace fenwork
