#pragma once

class QWidget;

// A user who holds Return a little too long must not answer the question that it opened.
namespace heldkeys {

// Drops the repeats of Return, Enter and Esc in this window, as long as it exists.
void dropIn(QWidget& window);

}  // namespace heldkeys
