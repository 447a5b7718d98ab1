#pragma once

#include <QString>

// What the desktop and the hardware offer on this machine. Each adaptor answers
// "not available" rather than failing when its service is missing.
namespace ZTPlatform {
QString describe();
}
