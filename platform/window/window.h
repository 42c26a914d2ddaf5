// A window of the layer: a Qt widget with a control id, text, enabled and visible state, a
// parent window, children found by id, and a message handler that the queue dispatches to.
// A Window owns its widget; child windows are destroyed before their parent's widget.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/window/message.h"
#include "platform/window/message_queue.h"

class QWidget;

namespace vrc::window {

class Window {
 public:
  Window();
  virtual ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  bool has_window() const { return m_widget != nullptr; }
  QWidget* widget() const { return m_widget.get(); }
  int id() const { return m_id; }
  void set_id(int id) { m_id = id; }
  Window* parent_window() const { return m_parent; }
  void set_parent_window(Window* parent) { m_parent = parent; }

  // A direct child with this control id, or null.
  virtual Window* child(int id) const;
  virtual std::string text() const;
  virtual void set_text(std::string_view text);
  bool enabled() const;
  void enable(bool on);
  bool visible() const;
  void show(int command);

  MessageQueue& queue() const { return m_queue; }
  // Convenience: post or send through this window's queue.
  void post(uint32_t message, WPARAM wparam = 0, LPARAM lparam = 0);
  LRESULT send(uint32_t message, WPARAM wparam = 0, LPARAM lparam = 0);
  // Whether a message in [first, last] is waiting for this window.
  bool has_queued(uint32_t first, uint32_t last) const;

  virtual LRESULT handle_message(uint32_t message, WPARAM wparam, LPARAM lparam);

 protected:
  void attach(std::unique_ptr<QWidget> widget);
  // Destroys the widget (children first, through the subclass) and drops queued messages.
  virtual void destroy_window();

 private:
  MessageQueue& m_queue;
  std::unique_ptr<QWidget> m_widget;
  Window* m_parent = nullptr;
  int m_id = IDC_STATIC;
};

}  // namespace vrc::window
