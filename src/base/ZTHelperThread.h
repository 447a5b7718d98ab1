#pragma once

#include <functional>

// Long passes over a library split their work in two: one half on the calling
// thread, the other on a helper thread the program keeps for the purpose, so
// that what a thread learns once (collators, memos of shared rows) stays
// learnt from one pass to the next instead of dying with a thread per pass.
namespace ZTHelperThread {
// Runs `here` on the calling thread and `there` on the helper, and returns
// when both have finished. Called on the helper itself, it runs both in turn.
void runSideBySide(const std::function<void()> &here, const std::function<void()> &there);
} // namespace ZTHelperThread
