// std::visit with one lambda a case; a case that is forgotten does not compile.
#pragma once

namespace ventolith::core {

template <class... Cases>
struct Visitor : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Visitor(Cases...) -> Visitor<Cases...>;

} // namespace ventolith::core
