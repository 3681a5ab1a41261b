#include "store/node.h"

#include <array>

namespace fenwork {

namespace {
struct PicEntry
{
    Pic pic;
    const char16_t *name;
};
constexpr std::array<PicEntry, 21> kPicNames{{
    {Pic::None, u""},        {Pic::AbcRoot, u"abcroot"}, {Pic::Poub, u"poub"},
    {Pic::HdrFile, u"hdrfile"}, {Pic::BdyFile, u"bdyfile"}, {Pic::FileAbc, u"fileabc"},
    {Pic::FileAbcM, u"fileabcm"}, {Pic::FileRo, u"filero"}, {Pic::FileRoM, u"filerom"},
    {Pic::Tune, u"tune"},    {Pic::TuneM, u"tunem"},     {Pic::HdrTune, u"hdrtune"},
    {Pic::BdyTune, u"bdytune"}, {Pic::Include, u"include"}, {Pic::ChpEtend, u"chpetend"},
    {Pic::Rem, u"rem"},      {Pic::Part, u"part"},       {Pic::Propr, u"propr"},
    {Pic::Voix, u"voix"},    {Pic::Mus, u"mus"},         {Pic::NoAbc, u"noabc"},
}};
} // namespace

QString picName(Pic pic)
{
    for (const auto &entry : kPicNames)
        if (entry.pic == pic)
            return QString::fromUtf16(entry.name);
    return {};
}

Pic picFromName(const QString &name)
{
    for (const auto &entry : kPicNames)
        if (name == QStringView(entry.name))
            return entry.pic;
    return Pic::None;
}

int Node::row() const
{
    if (!m_parent)
        return 0;
    if (!m_parent->m_rowsValid) {
        const auto &siblings = m_parent->m_children;
        for (int i = 0; i < siblings.size(); ++i)
            siblings.at(i)->m_row = i;
        m_parent->m_rowsValid = true;
    }
    return m_row;
}

Node *Node::nextSibling() const
{
    return m_parent ? m_parent->child(row() + 1) : nullptr;
}

Node *Node::previousSibling() const
{
    return m_parent ? m_parent->child(row() - 1) : nullptr;
}

} // namespace fenwork
