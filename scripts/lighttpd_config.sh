#!/usr/bin/env bash
# Prints the configuration of a lighttpd that serves a site and its search, for the demo and the
# tests: the pages of SITE at /, INDEX at /search/, on 127.0.0.1 alone. Of INDEX only the search
# program and what its results page links to can be reached.
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
server.modules = ("mod_access", "mod_alias", "mod_cgi", "mod_dirlisting", "mod_redirect")
server.bind = "127.0.0.1"
server.port = $port
server.document-root = "$site"
server.errorlog = "/dev/stderr"
server.breakagelog = "/dev/stderr"
server.upload-dirs = ("/tmp")
server.max-request-size = 1024
# A form of a page in another character set than UTF-8 sends other bytes.
server.http-parseopts = ("url-invalid-utf8-reject" => "disable")
server.tag = "lighttpd"
index-file.names = ("index.html", "index.htm")
dir-listing.activate = "enable"
mimetype.assign = (
  ".html" => "text/html", ".htm" => "text/html", ".xhtml" => "application/xhtml+xml",
  ".txt" => "text/plain; charset=utf-8", ".css" => "text/css", ".js" => "text/javascript",
  ".svg" => "image/svg+xml", ".png" => "image/png", ".jpg" => "image/jpeg",
  ".jpeg" => "image/jpeg", ".gif" => "image/gif", ".ico" => "image/x-icon",
  ".pdf" => "application/pdf", ".xml" => "application/xml",
  "" => "application/octet-stream"
)

# Of the index folder the search program is run, and style sheets, scripts and the description of
# the search are delivered. Everything else is denied: the index files, the template and the log
# of what people searched for.
alias.url = ("/search/" => "$index/")
\$HTTP["url"] =~ "^/search/?\$" {
  url.redirect = ("" => "/search/search.cgi\${qsa}")
} else \$HTTP["url"] =~ "^/search(/|\$)" {
  mimetype.assign = (
    ".css" => "text/css; charset=utf-8", ".js" => "text/javascript; charset=utf-8",
    ".xsl" => "application/xml", ".xml" => "application/opensearchdescription+xml"
  )
  \$HTTP["url"] == "/search/search.cgi" {
    cgi.assign = ("/search.cgi" => "")
  } else \$HTTP["url"] !~ "^/search/([A-Za-z0-9_-]+\.(css|js|xsl)|vela_opensearch\.xml)\$" {
    url.access-deny = ("")
  }
}
CONFIG
