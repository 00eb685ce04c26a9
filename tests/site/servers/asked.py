"""What every server is asked."""

from urllib.parse import quote

FORM = "application/x-www-form-urlencoded"
SEARCH = "/search/search.cgi"

# Requests that reach the program: (what, method, query string, content type, body).
# Answers are compared with those of the program run by hand.
REQUESTS = [
    ("one word", "GET", "vela_query=lighthouse", None, b""),
    ("two words, matching all", "GET", "vela_query=steep+cliffs&vela_and=1", None, b""),
    ("a phrase", "GET", "vela_query=%22old+lighthouse%22", None, b""),
    ("quotation marks that are not escaped", "GET", 'vela_query="old+lighthouse"', None, b""),
    ("letters beyond ASCII", "GET", "vela_query=cr%C3%A8me+br%C3%BBl%C3%A9e", None, b""),
    ("bytes that are no UTF-8", "GET", "vela_query=caf%E9+%FF%FE", None, b""),
    ("escaped plus and ampersand", "GET", "vela_query=tide%26out+%2Bswim", None, b""),
    ("an escaped parameter name", "GET", "vela%5Fquery=harbour", None, b""),
    ("markup", "GET", "vela_query=%3Cscript%3Ealert(1)%3C/script%3E", None, b""),
    ("one result a page, the second page", "GET",
     "vela_query=harbour&vela_per_page=1&vela_page=2&vela_sort=1", None, b""),
    ("an XML answer", "GET", "vela_query=harbour&vela_xml=1", None, b""),
    ("completion", "GET", "vela_query=light&vela_ac=1", None, b""),
    ("completion beyond ASCII", "GET", "vela_query=caf%C3%A9&vela_ac=1", None, b""),
    ("no parameters", "GET", "", None, b""),
    ("words without a parameter name", "GET", "lighthouse+cliffs", None, b""),
    ("shell characters without a parameter name", "GET", "a+%22b%22+$(c);%60d%60+*", None, b""),
    ("a query beyond the longest", "GET", "vela_query=" + "harbour+" * 400, None, b""),
    ("a long address without a parameter name", "GET", "+".join(["harbour"] * 870), None, b""),
    ("a form sent as a body", "POST", "", FORM, b"vela_query=seals&vela_and=1"),
    ("a body beyond ASCII", "POST", "", FORM, b"vela_query=sm%C3%B8rrebr%C3%B8d"),
    ("a body and a query string", "POST", "vela_query=harbour", FORM, b"vela_query=seals"),
    ("a long body", "POST", "", FORM, b"vela_query=" + b"seals+" * 9000),
    ("an empty body", "POST", "", FORM, b""),
]

# Requests that the program cannot decode: it answers with a message and exit status 1.
BAD_REQUESTS = [
    ("a body that is no form", "POST", "", "text/plain", b"vela_query=seals"),
    ("a form with its character set", "POST", "", FORM + "; charset=UTF-8", b"vela_query=seals"),
]


def choosing_another_index(index):
    """Query strings that a server turns into arguments which would choose an index."""
    directory = quote(str(index))
    return ["/I+" + directory, "/I+" + directory + "%00", "/I%00+" + directory,
            "/I%00x+" + directory + "%00%00", "+/I++" + directory + "+",
            "/I+" + directory + "/%5C%5C..", "/I+" + directory.replace("/", "%2F")]


# Other ways to write an address within the index folder, that must not get around its rules.
DISGUISES = ["/search/{}", "/search//{}", "//search/{}", "/search/./{}", "/search/%2e/{}",
             "/search/x/../{}", "/search/search.cgi/{}", "/search/search.cgi/../{}",
             "/search/search.cgi%2f..%2f{}", "/%73earch/{}", "/search/{}/", "/search/{}%00.css",
             "/search/{}/x.css", "/search/x.css/../{}"]
