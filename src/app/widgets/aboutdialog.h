#pragma once
#include <QDialog>

class QLabel;

namespace fenwork {

class AppContext;

// f_about: the program's name, version and contact address.
class AboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AboutDialog(AppContext &app, QWidget *parent = nullptr);

public slots:
    void LoadLang();

private:
    AppContext &m_app;
    QLabel *m_contact;
};

} // namespace fenwork
