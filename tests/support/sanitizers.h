// Which sanitizer the tests are built with: it makes the same work take ten times as long.
#pragma once

#ifdef __has_feature
#define PQ_HAS_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#else
#define PQ_HAS_ADDRESS_SANITIZER 0
#endif
