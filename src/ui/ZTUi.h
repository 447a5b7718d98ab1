#pragma once

class QApplication;

namespace ZTUi {
// Sets the application's style and icon theme fallbacks.
void setUpApplication(QApplication &app);
}
