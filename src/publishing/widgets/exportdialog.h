#pragma once
// f_export: a form over the engraver's format file, the choice of output, and a preview of the
// pages. It reads format.fmt when it opens and writes it on Export.
#include "publishing/formatmodel.h"
#include "publishing/gsexport.h"

#include <QDialog>
#include <QImage>

#include <array>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;
class QScrollArea;
class QSlider;
class QSpinBox;
class QStackedWidget;
class QTreeWidget;

namespace fenwork {

class AppContext;

class ExportDialog : public QDialog
{
    Q_OBJECT
public:
    ExportDialog(AppContext &app, const ExportDialogRequest &request, QWidget *parent = nullptr);

    // The controls from the model and back.
    void setModel(const FormatModel &model);
    FormatModel model() const;
    // What the caller of the export goes on with; an empty paper name: cancelled.
    ExportDialogAnswer answer() const { return m_answer; }

    // Shows panel `k` (the number of the tree's node "k0" ... "k7").
    void showPanel(int k);
    // Renders the preview and shows `page`.
    void Preview(bool keepFormat, bool keepPostScript, int page);
    int previewPageCount() const { return m_pages.size(); }

private:
    QWidget *buildOutputPanel();
    QWidget *buildPagePanel();
    QWidget *buildHeaderPanel();
    QWidget *buildTitlesPanel();
    QWidget *buildPartsPanel();
    QWidget *buildWordsPanel();
    QWidget *buildMiscPanel();
    QWidget *buildHandPanel();
    QWidget *buildPreview();
    // A length box with its slider, and a font row, placed in `grid` at `row`.
    void addSpaceRow(QGridLayout *grid, int row, int slot, const QString &label);
    void addFontRow(QGridLayout *grid, int row, int slot, const QString &label);
    void loadTabs();
    void updateInfo();
    void showPage(int page);
    void bt_ok_Click();
    void bt_reinit_Click();
    void bt_seeDoc_Click();
    QString caption(const char *key) const; // a text of the section "Export"
    QString formatPath() const;

    AppContext &m_app;
    ExportDialogRequest m_request;
    ExportDialogAnswer m_answer;

    QTreeWidget *m_tree = nullptr;
    QStackedWidget *m_panels = nullptr;
    std::array<QLineEdit *, FormatModel::kSlots> m_space {};
    std::array<QSlider *, FormatModel::kSlots> m_spaceSlider {};
    std::array<QComboBox *, FormatModel::kSlots> m_font {};
    std::array<QComboBox *, FormatModel::kSlots> m_size {};
    std::array<QCheckBox *, FormatModel::kSlots> m_bold {};
    std::array<QCheckBox *, FormatModel::kSlots> m_italic {};
    QSlider *m_scale = nullptr;
    QLineEdit *m_staffSep = nullptr;
    QSlider *m_staffSepSlider = nullptr;
    QButtonGroup *m_paper = nullptr;
    QButtonGroup *m_orientation = nullptr;
    std::array<QLineEdit *, 3> m_header {};
    std::array<QLineEdit *, 3> m_footer {};
    QCheckBox *m_oneTunePg = nullptr;
    QCheckBox *m_splitTune = nullptr;
    QCheckBox *m_prntTempo = nullptr;
    QCheckBox *m_continueAll = nullptr;
    QCheckBox *m_addTabs = nullptr;
    QComboBox *m_tabs = nullptr;
    int m_tabsRowRead = -1; // a row read beyond the list, kept as it was
    QButtonGroup *m_ttr = nullptr;
    QCheckBox *m_prntX = nullptr;
    QButtonGroup *m_composer = nullptr;
    QCheckBox *m_printP = nullptr;
    QCheckBox *m_musicOnly = nullptr;
    QPlainTextEdit *m_handWr = nullptr;
    QButtonGroup *m_export = nullptr;
    QRadioButton *m_expFile = nullptr;
    QRadioButton *m_directPrnt = nullptr;
    QComboBox *m_typFile = nullptr;
    QLineEdit *m_resol = nullptr;
    QLabel *m_infoDoc = nullptr;
    QCheckBox *m_jumpFormat = nullptr;

    QLabel *m_image = nullptr;
    QScrollArea *m_view = nullptr;
    QSlider *m_zoom = nullptr;
    QSpinBox *m_page = nullptr;
    QStringList m_pages;
    QImage m_pageImage;
};

// The window's implementation of the dialog seam.
class ExportDialogWindowHost : public ExportDialogHost
{
public:
    ExportDialogWindowHost(AppContext &app, QWidget *parent)
        : m_app(app)
        , m_parent(parent)
    { }
    ExportDialogAnswer showExportDialog(const ExportDialogRequest &request) override;

private:
    AppContext &m_app;
    QWidget *m_parent;
};

} // namespace fenwork
