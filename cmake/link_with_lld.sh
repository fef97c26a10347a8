#!/bin/sh
# Called by g++ in front of its own linker, which takes minutes over the sections of the tests where
# LLVM's takes a second.
#   g++ -wrapper cmake/link_with_lld.sh ...
case $1 in
  *collect2) shift && exec ld.lld "$@" ;;
  *) exec "$@" ;;
esac
