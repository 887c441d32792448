#pragma once

#include <cstdint>

/// A callback's address as the log has it: its low 32 bits.
template <class Result, class... Parameters>
unsigned LoggedAddress(Result (*pfnCallback)(Parameters...))
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pfnCallback));
}
