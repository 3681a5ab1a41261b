#pragma once
#include <QString>

namespace fenwork {

// The desktop's clipboard as the core sees it. The window puts the system's in; the batch
// companion and the tests keep a private one, so that nothing they do reaches the desktop.
class Clipboard
{
public:
    virtual ~Clipboard() = default;
    virtual void setText(const QString &text) = 0;
    virtual QString text() const = 0;
};

class MemoryClipboard : public Clipboard
{
public:
    void setText(const QString &text) override { m_text = text; }
    QString text() const override { return m_text; }

private:
    QString m_text;
};

} // namespace fenwork
