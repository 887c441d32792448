#include "virtualpad/PadModel.h"

#include <algorithm>
#include <iterator>

namespace virtualpad {

namespace {

const PadModel kModels[] = {
    // ID name     sensor canvas
    {2, "Alder", false, true},  {5, "Birch", false, false}, {7, "Cedar", true, false},
    {3, "Maple", false, false}, {4, "Rowan", false, false},
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
    const auto found = std::find_if(std::begin(kModels), std::end(kModels),
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
