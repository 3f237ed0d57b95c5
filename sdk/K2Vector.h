#pragma once

#include <vector>

// The host's vector type.
template <typename T>
using K2Vector = std::vector<T>;
