#pragma once

/// The first byte of a frame that holds a whole message.
enum class MessageKind : char { Text = '\x81', Binary = '\x82' };

/// The header of a server's frame, which does not mask, with a whole message of so many bytes.
struct MessageFrameHeader {
    char bytes[10];
    int nSize; ///< of bytes, what is used

    MessageFrameHeader(MessageKind kind, int nMessage);
};
