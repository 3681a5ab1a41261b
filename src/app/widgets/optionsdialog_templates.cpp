// The templates tab of the options dialog: the files of the user's template folder, shown,
// edited, made, renamed and deleted in place, and the default template for new tunes.
#include "app/widgets/optionsdialog.h"

#include "editing/templates.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSignalBlocker>

namespace fenwork {

void OptionsDialog::fillTemplates(const QString &select)
{
    const QString chosenDefault = m_defaultTemplate->count() > 0 ? m_defaultTemplate->currentText()
                                                                 : m_app.ini().get(keys::ModeleDef);
    const QStringList names = templateNames(m_app);
    {
        const QSignalBlocker block(m_templates);
        m_templates->clear();
        m_templates->addItems(names);
    }
    m_defaultTemplate->clear();
    m_defaultTemplate->addItem(QString());
    m_defaultTemplate->addItems(names);
    m_defaultTemplate->setCurrentIndex(qMax(0, m_defaultTemplate->findText(chosenDefault)));
    const int row = names.indexOf(select);
    m_templates->setCurrentRow(row >= 0 ? row : (names.isEmpty() ? -1 : 0));
    lst_Mdl_Click();
}

void OptionsDialog::lst_Mdl_Click()
{
    const QListWidgetItem *item = m_templates->currentItem();
    m_templateName->setText(item ? item->text() : QString());
    m_templateText->setPlainText(item ? readTemplate(m_app, item->text(), false) : QString());
}

void OptionsDialog::bt_newTmpl_Click()
{
    const QString text = m_templateText->toPlainText().isEmpty() || !m_templates->currentItem()
        ? m_app.newTuneText
        : m_templateText->toPlainText();
    const QString name = saveTemplate(m_app, text);
    if (!name.isEmpty())
        fillTemplates(name);
}

void OptionsDialog::bt_delTmpl_Click()
{
    if (const QListWidgetItem *item = m_templates->currentItem(); item && deleteTemplate(m_app, item->text()))
        fillTemplates({});
}

void OptionsDialog::bt_saveMdl_Click()
{
    if (const QListWidgetItem *item = m_templates->currentItem())
        writeTemplate(m_app, item->text(), m_templateText->toPlainText());
}

void OptionsDialog::bt_newName_Click()
{
    const QListWidgetItem *item = m_templates->currentItem();
    if (!item)
        return;
    const QString wanted = m_templateName->text();
    if (renameTemplate(m_app, item->text(), wanted))
        fillTemplates(wanted);
    else
        m_templateName->setText(item->text());
}

} // namespace fenwork
