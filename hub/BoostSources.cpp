// What the headers of Boost leave to be compiled once.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/json/src.hpp>
