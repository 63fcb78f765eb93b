// Only an X server needs help: a compositing manager, which owns a selection of that name while it runs.
#include "ui/kit/SeeThrough.h"

#include <QByteArray>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace ventolith::ui {
namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); } // What the library hands over.
};
template <class Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

QByteArray nameOfManager() {
  int display = 0, screen = 0;
  char* host = nullptr;
  if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
  return "_NET_WM_CM_S" + QByteArray::number(screen);
}

} // namespace

bool screenShowsThroughWindows() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr) return true;
  xcb_connection_t* const server = x11->connection();
  if (server == nullptr) return true; // Windows that no screen shows.
  const QByteArray name = nameOfManager();
  const auto atom = xcb_intern_atom(server, true, static_cast<std::uint16_t>(name.size()), name.constData());
  const ReplyPointer<xcb_intern_atom_reply_t> known(xcb_intern_atom_reply(server, atom, nullptr));
  if (known == nullptr || known->atom == XCB_ATOM_NONE) return false;
  const auto owner = xcb_get_selection_owner(server, known->atom);
  const ReplyPointer<xcb_get_selection_owner_reply_t> its(
      xcb_get_selection_owner_reply(server, owner, nullptr));
  return its != nullptr && its->owner != XCB_WINDOW_NONE;
}

} // namespace ventolith::ui
