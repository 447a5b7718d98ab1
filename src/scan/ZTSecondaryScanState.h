#pragma once

#include <QMap>
#include <QString>

// What the template reader remembers from frame to frame: the codes it has
// seen since the last decision and a frame counter. The camera loop keeps one
// for the whole process; a still picture gets its own so that it neither
// disturbs nor is disturbed by the camera.
struct ZTSecondaryScanState {
    // Sorted by code, so that a tie between rivals is settled the same way on
    // every run.
    QMap<QString, qint64> sightings;
    qint64 frameCounter = 0;

    static ZTSecondaryScanState &processWide();
};
