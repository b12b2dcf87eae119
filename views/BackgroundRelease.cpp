#include "views/BackgroundRelease.h"

#include <QThreadPool>

namespace {

// Destroyed at exit after waiting for the releases still queued.
Q_GLOBAL_STATIC(QThreadPool, releasePool)

} // namespace

void RunReleaseInBackground(std::function<void()> drop) {
    QThreadPool *pool = releasePool();
    // One thread: releases are short-lived work that must not take the compare's workers.
    pool->setMaxThreadCount(1);
    pool->start(std::move(drop));
}
