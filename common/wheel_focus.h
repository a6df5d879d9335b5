#pragma once

class QWidget;

/**
 * Spin and combo boxes of `form`, itself included, take the wheel only with the focus, and never the
 * focus by the wheel: it scrolls what they lie in, and no number changes below a passing pointer.
 */
void leave_wheel_without_focus(QWidget* form);
