#pragma once

#include <QtGlobal>

// The knobs of one scan of one picture. A new context holds the values the
// camera loop starts with: rows both ways, one threshold at mid-grey.
struct ZTScanContext {
    bool scanToRight = true; // rows, left to right (angle 90)
    bool scanToLeft = true;  // rows, right to left (angle 270)
    bool scanDown = false;   // columns, top to bottom (angle 180)
    bool scanUp = false;     // columns, bottom to top (angle 360)
    // Carried for callers; the validator's own rule decides whether check digits are enforced.
    bool shouldEnforceChecksum = false;
    qint64 scanDelta = 5;       // largest spacing between scan lines, in pixels
    qint64 barcodeCount = 1;    // how many barcodes to look for
    qint64 thresholdDelta = 10; // step between thresholds tried
    qint64 thresholdMargin = 0; // how far tried thresholds may lie from threshold; 0 means one only
    qint64 threshold = 128;     // grey level that parts dark from light
};
