// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

namespace morvath::exporter
{

template <auto Release>
struct Releaser
{
    void operator()(auto* p) const { Release(p); }
};

/** What a C library allocated. */
template <typename T, auto Release>
using Owned = std::unique_ptr<T, Releaser<Release>>;

} // namespace morvath::exporter
