#!/bin/sh
# Doxygen's input filter: the headers comment with plain //, written for
# people, not for doxygen. Each such line becomes a documentation comment
# with doxygen's special characters escaped, so that "<prefix>" or an "@"
# stays text. A comment that opens the file describes the file.
exec sed -e '1{/^\/\//i\
/// \\file
}' -e '/^[[:space:]]*\/\//{
s/\\/\\\\/g
s/</\\</g
s/>/\\>/g
s/@/\\@/g
s/&/\\\&/g
s/#/\\#/g
s/%/\\%/g
s/\$/\\$/g
s|^\([[:space:]]*\)//|\1///|
}' "$1"
