#include "host/gui/AccessKeys.h"

#include <vector>

namespace Galley {

QChar AccessKeys::markedKey(const QString& caption) {
    for (qsizetype i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != '&')
            continue;
        if (caption[i + 1] == '&') {
            ++i; // "&&" is a literal ampersand
            continue;
        }
        if (caption[i + 1].isLetterOrNumber())
            return caption[i + 1].toLower();
    }
    return {};
}

bool AccessKeys::takenByOther(const void* owner, QChar key) const {
    for (const auto& [other, taken] : keys_)
        if (other != owner && taken == key)
            return true;
    return false;
}

QString AccessKeys::caption(const void* owner, const QString& caption) {
    if (const QChar marked = markedKey(caption); !marked.isNull()) {
        keys_[owner] = marked;
        return caption;
    }
    QString text = caption;
    text.replace("&", "&&");
    // Positions in `text` to try: the kept letter (at a word's start first), then the starts
    // of words, then any letter.
    std::vector<qsizetype> wordStarts, letters, candidates;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isLetterOrNumber())
            continue;
        letters.push_back(i);
        if (i == 0 || !text[i - 1].isLetterOrNumber())
            wordStarts.push_back(i);
    }
    if (const auto kept = keys_.find(owner); kept != keys_.end())
        for (const auto* positions : {&wordStarts, &letters})
            for (const qsizetype i : *positions)
                if (text[i].toLower() == kept->second)
                    candidates.push_back(i);
    candidates.insert(candidates.end(), wordStarts.begin(), wordStarts.end());
    candidates.insert(candidates.end(), letters.begin(), letters.end());
    for (const qsizetype at : candidates) {
        const QChar key = text[at].toLower();
        if (takenByOther(owner, key))
            continue;
        keys_[owner] = key;
        return text.left(at) + '&' + text.mid(at);
    }
    keys_.erase(owner);
    return text;
}

} // namespace Galley
