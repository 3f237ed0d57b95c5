#pragma once

#include "sdk/ISubject.h"

#include <utility>
#include <vector>

namespace Galley {

class Subject : public ISubject {
public:
    void AttachObserver(IObserver* observer, PMIID protocol) override;
    void DetachObserver(IObserver* observer, PMIID protocol) override;
    bool IsAttached(const IObserver* observer, PMIID protocol) const override;
    void Change(ClassID change, PMIID protocol, void* changedBy) override;

private:
    std::vector<std::pair<IObserver*, PMIID>> attached_;
};

} // namespace Galley
