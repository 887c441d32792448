// Texts and records as they cross to the maker's library and back. Nothing here trusts the library to terminate a text.
#pragma once

#include "sdk/SdkNumbers.h"

#include <QString>
#include <QVector>

#include <cstddef>

/// A text of any length as UTF-8; empty when there is none and when it is too long to work with.
QString TextFromLibrary(const char *szText);

/// The buffer as UTF-8 text up to its first NUL, at most size bytes.
QString TextFromBuffer(const char *buffer, std::size_t size);

/// A text as the library takes it: its code points with a NUL after them.
QVector<wchar_t> TextForLibrary(const QString &strText);

/// What GetDeviceInfo fills, whatever the type: a flag, one or two ints, or a text.
union DeviceInfo {
    char text[sdk::InfoBufferBytes]; // the widest first, so that DeviceInfo{} clears it all
    int values[2];
    unsigned char bDeviceConnected;
};

/// True for the types that the pads know.
bool IsDeviceInfoType(int nType);

/// The information as the client gets it, each type in its own format.
QString FormatDeviceInfo(int nType, const DeviceInfo &info);
