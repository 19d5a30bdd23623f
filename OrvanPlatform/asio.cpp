// Asio's own sources, compiled here for every target.
#include <boost/asio/impl/src.hpp>
