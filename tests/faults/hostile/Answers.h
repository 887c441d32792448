/// What the hostile library answers. The library's functions are written once, in HostileSdk.cpp; where the answers
/// come from is the business of whoever implements this.
#pragma once

#include <cstddef>
#include <string>

namespace hostile {

/// Called first in every call, with the exported name: may block, or say something on standard error.
void enter(const char *function);

/// A number, a flag or a result code.
int number(const char *function);

/// A text to hand out; false for null. The library adds the NUL and keeps account of who has the text.
bool text(const char *function, std::string &content);

/// Writes into an output buffer, up to its stated size and not a byte further; owes no NUL.
void fill(const char *function, void *buffer, std::size_t size);

/// Frees all texts that are still handed out.
void forgetTexts();

} // namespace hostile
