// What counts as the origin of a page.
#pragma once

#include <QString>

/// Whether the text is an origin as browsers send it: scheme, host and port in lower case and plain ASCII (a name in
/// another script as its "xn--" form), "null" or "file://"; nothing that could look like something else in a window.
bool IsOrigin(const QString &strText);

/// Whether many pages that have nothing to do with each other share the origin. What is answered about one of them
/// cannot hold for all.
bool IsSharedOrigin(const QString &strOrigin);
