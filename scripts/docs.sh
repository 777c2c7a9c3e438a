#!/usr/bin/env bash
# Builds the HTML reference of the public header and the core's headers with
# Doxygen (docs/Doxyfile) into build-docs/html, or into DIR/html with
# `scripts/docs.sh DIR`. Any Doxygen warning fails the script. A second run
# over the public header alone also requires every member there to be
# documented: it is the interface the firmware is written against.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh doxygen

out=${1:-build-docs}
FIXEDPOINT_VERSION=$(sed -n 's/^project(FixedPoint VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
FIXEDPOINT_DOCS_DIR=$out
export FIXEDPOINT_VERSION FIXEDPOINT_DOCS_DIR
rm -rf "$out/html"
mkdir -p "$out"

echo "== doxygen: public header and core headers into $out/html"
doxygen docs/Doxyfile

echo "== doxygen: every member of the public header documented"
{
    cat docs/Doxyfile
    printf '%s\n' 'INPUT = Common/FixedPointLibrary/FixedPoint.h' 'EXTRACT_ALL = NO' \
        'WARN_IF_UNDOCUMENTED = YES' 'GENERATE_HTML = NO' 'GENERATE_XML = YES' 'XML_OUTPUT = xml-public'
} | doxygen -

[ -f "$out/html/classCFixedPoint.html" ] || { echo "docs: no page for CFixedPoint" >&2; exit 1; }
echo "== reference: $out/html/index.html"
