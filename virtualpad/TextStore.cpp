#include "virtualpad/TextStore.h"

#include <algorithm>

namespace virtualpad {

char *TextStore::handOut(TextSource source, const QByteArray &text)
{
    const size_t size = size_t(text.size()) + 1;
    std::unique_ptr<char[]> content(new char[size]);
    std::copy_n(text.constData(), size, content.get());
    char *const pText = content.get();
    m_texts.emplace(pText, Text{source, std::move(content)});
    return pText;
}

bool TextStore::takeBack(TextSource source, const char *pText)
{
    const auto found = m_texts.find(pText);
    if (found == m_texts.end() || found->second.source != source)
        return false;
    m_texts.erase(found);
    return true;
}

} // namespace virtualpad
