#pragma once

#include <functional>

/**
 * Called by long loops of the engine (after each file of a walk, each record of a compare
 * pass, each chunk of a checksum) so that the caller can process its events and a Cancel can
 * arrive. The hook is always called on the thread that started the work. An empty hook does
 * nothing; a hook should throttle itself, it may be called hundreds of thousands of times.
 */
using YieldHook = std::function<void()>;
