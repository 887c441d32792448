#include "virtualpad/PadModel.h"

#include <algorithm>
#include <iterator>

namespace virtualpad {

namespace {

const PadModel kModels[] = {
    // name  ID sensor canvas
    {"Alder", 2, false, true},  {"Birch", 5, false, false}, {"Cedar", 7, true, false},
    {"Maple", 3, false, false}, {"Rowan", 4, false, false},
};

} // namespace

QByteArray PadModel::productName() const
{
    return QByteArrayLiteral("Virtual ") + name;
}

QByteArray PadModel::padId() const
{
    return QByteArrayLiteral("VP-") + QByteArray(name).toUpper() + "-000" + QByteArray::number(deviceId);
}

const PadModel *findPadModel(int deviceId)
{
    const auto *const found = std::find_if(std::begin(kModels), std::end(kModels),
                                           [deviceId](const PadModel &model) { return model.deviceId == deviceId; });
    return found == std::end(kModels) ? nullptr : found;
}

QByteArray versionText()
{
    return QByteArray::number(kVersionMajor) + '.' + QByteArray::number(kVersionMinor);
}

QByteArray aboutText()
{
    return QByteArrayLiteral("Virtual signature pad ") + versionText() + ": a software pad, no hardware attached.";
}

} // namespace virtualpad
