#include "service/MessageFrame.h"

#include <QtEndian>

MessageFrameHeader::MessageFrameHeader(MessageKind kind, int nMessage) : bytes{static_cast<char>(kind)}, nSize(2)
{
    if (nMessage < 126) {
        bytes[1] = static_cast<char>(nMessage);
    } else if (nMessage <= 0xffff) {
        bytes[1] = '\x7e';
        qToBigEndian(static_cast<quint16>(nMessage), bytes + 2);
        nSize = 4;
    } else {
        bytes[1] = '\x7f';
        qToBigEndian(static_cast<quint64>(nMessage), bytes + 2);
        nSize = 10;
    }
}
