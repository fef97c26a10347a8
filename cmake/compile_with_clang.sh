#!/bin/sh
# Called in front of g++, for the tests' own code: clang takes half the time over what is not
# optimised, and what either compiles can be linked together.
#   cmake/compile_with_clang.sh [CLANG'S OWN FLAG]... -- [ccache] g++ [FLAG]...
own=
while [ "$1" != -- ]; do own="$own $1" && shift; done
shift
cache=
case $1 in *ccache) cache=$1 && shift ;; esac
shift
for flag; do
  shift
  case $flag in
    -fpch-preprocess | -Wno-subobject-linkage | -Wa,-mbig-obj | --param=*) ;;  # g++ alone knows or needs them
    *.gch) rm -f "$flag" && set -- "$@" "$flag" ;;  # clang would begin with the former one
    *) set -- "$@" "$flag" ;;
  esac
done
exec $cache clang++ $own "$@"
