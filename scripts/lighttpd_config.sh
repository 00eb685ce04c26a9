#!/usr/bin/env bash
# Prints the configuration of a lighttpd that serves a site and its search, for the demo and the
# tests: the pages of SITE at /, the search program of INDEX at /search/search.cgi and nothing else
# of INDEX, on 127.0.0.1 alone.
#   scripts/lighttpd_config.sh SITE INDEX PORT
set -euo pipefail
site=$(realpath "$1")
index=$(realpath "$2")
port=$3

# Both names go into quoted text of the configuration.
case $site$index in
  *[\"\\\$]*)
    echo "lighttpd_config.sh: a folder's name holds a character that cannot be configured" >&2
    exit 1
    ;;
esac

cat <<CONFIG
server.modules = ("mod_access", "mod_alias", "mod_cgi", "mod_dirlisting")
server.bind = "127.0.0.1"
server.port = $port
server.document-root = "$site"
server.errorlog = "/dev/stderr"
server.breakagelog = "/dev/stderr"
server.upload-dirs = ("/tmp")
server.max-request-size = 1024
server.tag = "lighttpd"
index-file.names = ("index.html", "index.htm")
dir-listing.activate = "enable"
mimetype.assign = (
  ".html" => "text/html", ".htm" => "text/html", ".xhtml" => "application/xhtml+xml",
  ".txt" => "text/plain; charset=utf-8", ".css" => "text/css", ".js" => "text/javascript",
  ".svg" => "image/svg+xml", ".png" => "image/png", ".jpg" => "image/jpeg",
  ".jpeg" => "image/jpeg", ".gif" => "image/gif", ".ico" => "image/x-icon",
  ".pdf" => "application/pdf", ".xml" => "application/xml", "" => "application/octet-stream"
)

# The search program is run, and is all that a visitor can reach of its folder: neither the
# index files nor the log of what people searched for.
alias.url = ("/search/" => "$index/")
\$HTTP["url"] =~ "^/search(/|\$)" {
  \$HTTP["url"] == "/search/search.cgi" {
    cgi.assign = ("/search.cgi" => "")
  } else {
    url.access-deny = ("")
  }
}
CONFIG
