# shellcheck shell=bash disable=SC2034
# Sourced by the other scripts: the folders of the product's C++ sources.

product_rooms=(app base device sdk service tools tray virtualpad)

# The same as one alternative of a regular expression: "app|base|...".
product_rooms_pattern=$(IFS='|' && echo "${product_rooms[*]}")
