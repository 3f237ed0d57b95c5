#pragma once

#include <QChar>
#include <QString>

#include <map>

namespace Galley {

// Access keys (Alt+letter) for the captions of one dialog's buttons. The plug-in's captions
// come from its string tables, mostly without one: a caption that marks its own ("&Open")
// keeps it; the others get a letter no other button of the dialog uses, the start of a word
// first. A button keeps its letter while its caption changes ("Activate All" → "Activate"),
// as long as the new caption has that letter.
class AccessKeys {
public:
    // `caption` as the button `owner` shows it, with "&" before its access key; a literal
    // "&" of a caption without one is doubled.
    QString caption(const void* owner, const QString& caption);

    // The access key `caption` marks itself ("&Open" → 'o'), or a null QChar.
    static QChar markedKey(const QString& caption);

private:
    bool takenByOther(const void* owner, QChar key) const;

    std::map<const void*, QChar> keys_;
};

} // namespace Galley
