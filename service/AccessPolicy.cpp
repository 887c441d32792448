#include "service/AccessPolicy.h"

bool AccessPolicy::AllowsOrigin(const QString &strOrigin) const
{
    if (strOrigin.isEmpty())
        return !bRequireOrigin;
    return !allowedOrigins || allowedOrigins->contains(strOrigin);
}
