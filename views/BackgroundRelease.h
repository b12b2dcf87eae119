#pragma once

#include <functional>
#include <memory>
#include <utility>

/**
 * Runs \a drop on a thread kept for releasing memory, one drop after another. A compare's
 * records (hundreds of thousands, each several allocations) are freed there, so that letting
 * go of a listing or a result does not hold the window still.
 */
void RunReleaseInBackground(std::function<void()> drop);

/**
 * Destroys \a value on the release thread. Whatever \a value shares (records held by a
 * listing and by a collection alike) is freed where its last holder lets go; QObjects handed
 * over must belong to no thread any more (QObject::moveToThread(nullptr)).
 */
template <typename T> void ReleaseInBackground(T value) {
    auto held = std::make_shared<T>(std::move(value));
    RunReleaseInBackground([held = std::move(held)]() mutable { held.reset(); });
}
