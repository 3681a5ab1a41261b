#pragma once
#include <QComboBox>

namespace fenwork {

// The editable name box of saved presets (filter masks, drones): pick a saved one from the list,
// or type a new name and confirm it with Return to save under it.
class PresetNameBox : public QComboBox
{
    Q_OBJECT
public:
    PresetNameBox(const QString &objectName, QWidget *parent = nullptr);

    // True while the box handles a typed name being confirmed: an `activated` then is no choice
    // of a listed preset, even when the name is one of them.
    bool confirmingTypedName() const { return m_confirming; }

signals:
    // Return in the name: save under it.
    void returnPressed();
    void nameEdited(const QString &text);

private:
    bool m_confirming = false;
};

} // namespace fenwork
