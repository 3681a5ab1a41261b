#include "app/widgets/languagechooser.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace fenwork {

LanguageChooser::LanguageChooser(AppContext &ctx, QWidget *parent)
    : QDialog(parent)
    , m_ctx(ctx)
    , m_list(new QListWidget(this))
{
    setObjectName(QStringLiteral("f_lg"));
    // No language is known yet, so the window has nothing to say but the program's name.
    setWindowTitle(QStringLiteral("Fennelworks"));
    m_list->setObjectName(QStringLiteral("lst_lang"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);

    m_list->addItems(ctx.lang().available());
    const QList<QListWidgetItem *> english = m_list->findItems(QStringLiteral("English"), Qt::MatchExactly);
    if (!english.isEmpty())
        m_list->setCurrentItem(english.first());

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    QPushButton *ok = buttons->button(QDialogButtonBox::Ok);
    ok->setDefault(true);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(buttons);

    // Return in the list reaches the dialog and presses the default button.
    connect(buttons, &QDialogButtonBox::accepted, this, &LanguageChooser::takeCurrentRow);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &LanguageChooser::takeCurrentRow);

    resize(260, 300);
}

QString LanguageChooser::choose(AppContext &ctx, QWidget *parent)
{
    LanguageChooser chooser(ctx, parent);
    chooser.exec();
    return chooser.chosen();
}

void LanguageChooser::takeCurrentRow()
{
    // The row shown selected, not merely the one with the focus frame.
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    const QListWidgetItem *item = selected.isEmpty() ? nullptr : selected.first();
    if (!item) {
        // Nothing to choose from: leave without a language. With rows, wait for a choice.
        if (m_list->count() == 0)
            reject();
        return;
    }
    m_chosen = item->text();
    m_ctx.ini().set(keys::Lang, m_chosen);
    m_ctx.lang().setName(m_chosen);
    accept();
}

void LanguageChooser::showEvent(QShowEvent *event)
{
    if (const QScreen *s = screen())
        move(s->availableGeometry().center() - rect().center());
    m_list->setFocus();
    QDialog::showEvent(event);
}

} // namespace fenwork
