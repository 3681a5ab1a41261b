#include "store/widgets/trashpanel.h"

#include "frame/appcontext.h"
#include "frame/language.h"
#include "store/trashbox.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace fenwork {

namespace {

const QString kSection = QStringLiteral("TrashPanel");

} // namespace

TrashPanel::TrashPanel(AppContext &app, QWidget *parent)
    : QFrame(parent)
    , m_app(app)
    , m_title(new QLabel)
    , m_tune(new QLabel)
    , m_from(new QLabel)
    , m_when(new QLabel)
    , m_toOrigin(new QRadioButton)
    , m_toOther(new QRadioButton)
    , m_files(new QComboBox)
    , m_restore(new QPushButton)
    , m_delete(new QPushButton)
    , m_empty(new QPushButton)
{
    setObjectName(QStringLiteral("pic_Rest"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    m_tune->setObjectName(QStringLiteral("lab_Morceau"));
    m_from->setObjectName(QStringLiteral("lab_fichOrig"));
    m_when->setObjectName(QStringLiteral("lab_Suppr"));
    m_toOrigin->setObjectName(QStringLiteral("opt_Rest0"));
    m_toOther->setObjectName(QStringLiteral("opt_Rest1"));
    m_files->setObjectName(QStringLiteral("lst_fichOuverts"));
    m_restore->setObjectName(QStringLiteral("bt_Rest"));
    m_delete->setObjectName(QStringLiteral("bt_supprTunePoubelle"));
    m_empty->setObjectName(QStringLiteral("bt_emptyTrash"));
    m_restore->setIcon(QIcon::fromTheme(QStringLiteral("edit-undo")));
    m_delete->setIcon(QIcon::fromTheme(QStringLiteral("edit-delete")));
    m_empty->setIcon(QIcon::fromTheme(QStringLiteral("trash-empty")));

    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_tune->setFont(bold);
    for (QLabel *label : { m_tune, m_from, m_when })
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_from->setWordWrap(true);

    // The two options are exclusive but may both be off, as when the panel opens.
    auto *options = new QButtonGroup(this);
    options->addButton(m_toOrigin);
    options->addButton(m_toOther);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 10, 12, 10);
    layout->addWidget(m_title);
    layout->addWidget(m_tune);
    layout->addWidget(m_from);
    layout->addWidget(m_when);
    layout->addSpacing(8);
    layout->addWidget(m_toOrigin);
    auto *other = new QHBoxLayout;
    other->addWidget(m_toOther);
    other->addWidget(m_files, 1);
    layout->addLayout(other);
    layout->addSpacing(8);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_restore);
    buttons->addWidget(m_delete);
    buttons->addStretch(1);
    buttons->addWidget(m_empty);
    layout->addLayout(buttons);
    layout->addStretch(1);

    connect(m_toOrigin, &QRadioButton::clicked, this, &TrashPanel::optionChosen);
    connect(m_toOther, &QRadioButton::clicked, this, &TrashPanel::optionChosen);
    connect(m_files, &QComboBox::activated, this, &TrashPanel::fileChosen);
    connect(m_restore, &QPushButton::clicked, this, &TrashPanel::bt_Rest_Click);
    connect(m_delete, &QPushButton::clicked, this, &TrashPanel::bt_supprTunePoubelle_Click);
    connect(m_empty, &QPushButton::clicked, this, &TrashPanel::bt_emptyTrash_Click);
    LoadLang();
    hide();
}

void TrashPanel::LoadLang()
{
    const Language &lang = m_app.lang();
    m_title->setText(lang.text(kSection, QStringLiteral("<tuneInTrashBox>")));
    m_toOther->setText(lang.text(kSection, QStringLiteral("<restoreElsewhere>")));
    m_restore->setText(lang.text(kSection, QStringLiteral("<restore>")));
    m_delete->setText(lang.text(kSection, QStringLiteral("<delpermanent>")));
    m_empty->setText(lang.text(kSection, QStringLiteral("<emptyTrash>")));
}

void TrashPanel::followWidget(QWidget *anchor)
{
    m_anchor = anchor;
    anchor->installEventFilter(this);
}

bool TrashPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_anchor && (event->type() == QEvent::Resize || event->type() == QEvent::Move) && isVisible())
        placeOverAnchor();
    return QFrame::eventFilter(watched, event);
}

void TrashPanel::placeOverAnchor()
{
    if (m_anchor && parentWidget())
        setGeometry(QRect(m_anchor->mapTo(parentWidget(), QPoint(0, 0)), m_anchor->size()));
}

void TrashPanel::showTune(const QString &clickedKey)
{
    const Language &lang = m_app.lang();
    const TrashTuneInfo info = trashTuneInfo(m_app, clickedKey);
    m_tuneKey = info.tuneKey;
    m_origin = info.origin;
    m_originExists = info.originExists;
    m_delete->setEnabled(true);
    m_restore->setEnabled(false);

    m_files->clear();
    m_files->addItem(lang.text(kSection, QStringLiteral("<chooseFile>")));
    if (const Node *root = m_app.tree().root())
        for (const Node *file : root->children())
            if (file->Key != key::Trash)
                m_files->addItem(file->Text);
    m_files->setCurrentIndex(0);
    for (QRadioButton *option : { m_toOrigin, m_toOther }) {
        option->setAutoExclusive(false);
        option->setChecked(false);
        option->setAutoExclusive(true);
    }
    m_toOther->setEnabled(false);

    m_tune->setText(info.caption);
    m_from->setText(lang.text(kSection, QStringLiteral("<fromFile>")) + u' ' + info.origin);
    m_when->setText(lang.text(kSection, QStringLiteral("<delDate>")) + u' ' + info.deleted);
    m_toOrigin->setEnabled(info.originExists);
    m_toOrigin->setText(lang.text(kSection, info.originExists ? QStringLiteral("<restoreOrigin>")
                                                              : QStringLiteral("<fileNotExist>")));
    placeOverAnchor();
    show();
    raise();
}

void TrashPanel::optionChosen()
{
    m_restore->setEnabled(m_toOrigin->isChecked() || m_toOther->isChecked());
}

void TrashPanel::fileChosen(int row)
{
    m_toOther->setEnabled(row > 0);
    m_toOther->setAutoExclusive(row > 0);
    m_toOther->setChecked(row > 0);
    m_toOther->setAutoExclusive(true);
    optionChosen();
}

void TrashPanel::bt_Rest_Click()
{
    QString kTarget;
    QString origin;
    if (m_toOther->isChecked()) {
        if (m_files->currentIndex() <= 0)
            return;
        // Captions that begin alike: the first file in tree order wins.
        const QString chosen = m_files->currentText();
        for (const Node *file : m_app.tree().root()->children()) {
            if (file->Key != key::Trash && file->Text.startsWith(chosen)) {
                kTarget = file->Key;
                break;
            }
        }
    } else if (m_toOrigin->isChecked()) {
        origin = m_origin;
    } else {
        return;
    }
    restoreFromTrash(m_app, m_tuneKey, origin, kTarget);
    m_restore->setEnabled(false);
    m_delete->setEnabled(false);
    hide();
}

void TrashPanel::bt_supprTunePoubelle_Click()
{
    deleteFromTrash(m_app, m_tuneKey);
    hide();
    emit trashChanged();
}

void TrashPanel::bt_emptyTrash_Click()
{
    if (!emptyTrash(m_app))
        return;
    hide();
    emit trashChanged();
}

} // namespace fenwork
