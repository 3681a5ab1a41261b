#include "frame/widgets/presetnamebox.h"

#include <QLineEdit>

namespace fenwork {

PresetNameBox::PresetNameBox(const QString &objectName, QWidget *parent)
    : QComboBox(parent)
{
    setObjectName(objectName);
    setInsertPolicy(QComboBox::NoInsert);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(8);
    // Our own line edit, connected before and after the box's own handlers, so that they run
    // knowing a typed name is being confirmed.
    auto *edit = new QLineEdit;
    connect(edit, &QLineEdit::editingFinished, this, [this] { m_confirming = true; });
    connect(edit, &QLineEdit::returnPressed, this, &PresetNameBox::returnPressed);
    setEditable(true);
    setLineEdit(edit);
    setCompleter(nullptr);
    connect(edit, &QLineEdit::editingFinished, this, [this] { m_confirming = false; });
    connect(edit, &QLineEdit::textEdited, this, &PresetNameBox::nameEdited);
}

} // namespace fenwork
