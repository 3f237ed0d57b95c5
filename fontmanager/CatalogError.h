#pragma once

#include <stdexcept>

namespace Vellumine {

// A failure of the library's catalog, whichever database holds it; the message names the
// library.
class CatalogError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Vellumine
