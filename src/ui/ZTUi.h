#pragma once

class QApplication;

namespace ZTUi {
// Sets the application's style and icon theme fallbacks.
void setUpApplication(QApplication &app);
// Switches between Breeze and Breeze Dark when the palette's lightness
// changes, so that toolbar icons stay visible; other themes are the
// desktop's choice and are left alone.
void followPalette();
} // namespace ZTUi
