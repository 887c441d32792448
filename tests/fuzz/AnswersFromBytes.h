#pragma once

#include <cstddef>
#include <cstdint>

/// Sets the bytes that the hostile library makes its answers from; they must live until the next call of it. Forgets
/// all texts that are still out. Resolved by name from the loaded library.
extern "C" __attribute__((visibility("default"))) void HostileSdkFeed(const std::uint8_t *bytes, std::size_t size);
