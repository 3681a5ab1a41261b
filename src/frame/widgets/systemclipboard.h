#pragma once
#include "frame/clipboard.h"

namespace fenwork {

// The desktop's own clipboard.
class SystemClipboard : public Clipboard
{
public:
    void setText(const QString &text) override;
    QString text() const override;
};

} // namespace fenwork
