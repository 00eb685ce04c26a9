"""What the answer to each row of docs/features.md must hold, worked out by hand from the pages of the
sample library. The keys are the row's feature and address."""

import dataclasses


@dataclasses.dataclass
class Expected:
    finds: tuple | None = None   # exactly these pages, in any order
    order: tuple | None = None   # the first results, in order
    shows: tuple = ()            # texts of the answer
    hides: tuple = ()            # texts that are not in it
    matches: tuple = ()          # patterns
    header: str | None = None
    logged: str | None = None    # a pattern for the log's last line
    is_logged: bool | None = None


def _search(parameters):
    return "/search/search.cgi" + ("?" + parameters if parameters else "")


def _mark(word):
    return f'<span class="highlight">{word}</span>'


FLOOD_PAGES = ("/history/timeline.txt", "/index.html", "/news/index.html",
               "/news/riverside-reopens.html", "/branches/riverside.html")
UMBRELLA_PAGES = ("/history/index.html", "/history/building.html", "/history/timeline.txt",
                  "/history/family.html", "/events/genealogy-morning.html",
                  "/news/unstaffed-hours.html", "/news/newspaper-archive.html")
CHESS_PAGES = ("/events/chess.html", "/events/index.html")
SPRINKLER = ("/history/building.html",)
BOOKBINDING = ("/events/bookbinding.html", "/events/index.html")

EXPECTED = {}


def _row(feature, parameters, **expected):
    EXPECTED[feature, _search(parameters)] = Expected(**expected)


# Asking.
_row("Any of the words", "vela_query=telescope+chess",
     finds=(*CHESS_PAGES, "/branches/riverside.html"),
     shows=("3 results containing some search terms.",))
_row("All of the words", "vela_query=telescopes+roof&vela_and=1",
     finds=("/events/stargazing.html",), shows=("1 result containing all search terms.",))
_row("A phrase", "vela_query=%22picture+books%22",
     finds=("/news/riverside-reopens.html", "/reading-list.txt", "/children/index.html"),
     shows=(_mark("picture books"),))
_row("Without a word", "vela_query=umbrella+-Pell",
     finds=tuple(set(UMBRELLA_PAGES) - {"/history/building.html", "/history/timeline.txt"}))
_row("Without a phrase", "vela_query=telescope+-%22tool+shelf%22", finds=(),
     shows=("No results found.",))
_row("Any letters: `*` and `?`", "vela_query=kingfish*", finds=("/events/bird-walk.html",),
     shows=(_mark("kingfisher"), _mark("Kingfishers")))
_row("Any letters in front", "vela_query=*walk", order=("/events/bird-walk.html",),
     shows=(f"Bird {_mark('walk')} along the towpath",))
_row("Quotes as phones type them", "vela_query=%E2%80%9Cpicture+books%E2%80%9D",
     finds=("/news/riverside-reopens.html", "/reading-list.txt", "/children/index.html"),
     shows=(_mark("picture books"),))
_row("A question", "vela_query=what+is+a+telescope%3F", finds=("/branches/riverside.html",))
_row("Hyphens in front", "vela_query=--telescope", finds=("/branches/riverside.html",))
_row("What to leave out, and no more", "vela_query=-library", finds=(),
     shows=("This search only says what to leave out. Please add a word to look for.",))
_row("Languages without blanks", "vela_query=%E5%88%A9%E7%94%A8%E6%A1%88%E5%86%85",
     finds=("/events/language-cafe.html",), shows=(_mark("利用案内"),))
_row("A word's other forms", "vela_query=renewal",
     finds=("/index.html", "/membership/loans.html", "/news/fines-abolished.html"))
_row("In a part of the site", "vela_query=flood+site:news",
     finds=("/news/index.html", "/news/riverside-reopens.html"))
_row("A whole part of the site", "vela_query=site:branches",
     finds=tuple(f"/branches/{page}.html"
                 for page in ("index", "central", "riverside", "northgate", "mobile")))
_row("Capital letters and accents do not matter", "vela_query=BIBLIOTHEQUE",
     finds=("/fr/index.html", "/fr/horaires.html", "/fr/atelier-ecriture.html"))
_row("Words with a hyphen", "vela_query=e-reader", finds=("/using/ebooks.html",),
     shows=(_mark("e-reader"),))
_row("Plain text files", "vela_query=charter+bishop", finds=("/history/timeline.txt",))
_row("Pages that ask not to be found", "vela_query=xylotheque", finds=())

# Order.
_row("The page that is called so comes first", "vela_query=opening+hours",
     order=("/hours.html",), shows=(f"{_mark('Opening')} {_mark('hours')}</a>",))
_row("Pages that weigh more", "vela_query=desk", order=("/hours.html",))
_row("Newest first", "vela_query=flood&vela_sort=1", finds=FLOOD_PAGES,
     matches=(r'class="sorting"><a href="[^"]*vela_sort=0">Sort by relevance</a> / '
              r'<a href="[^"]*vela_sort=2">Sorted by date, newest first</a>',
              r"(?s)22 Sep 2025.*22 Sep 2025.*30 Aug 2025.*30 Aug 2025"))
_row("Oldest first", "vela_query=flood&vela_sort=2", finds=FLOOD_PAGES,
     matches=(r"Sorted by date, oldest first",
              r"(?s)30 Aug 2025.*30 Aug 2025.*22 Sep 2025.*22 Sep 2025"))
_row("Results per page, and turning pages",
     "vela_query=library&vela_per_page=10&vela_page=2",
     shows=("<b>11.</b>&nbsp;", "<b>20.</b>&nbsp;", "&lt;&lt; Previous", "Next &gt;&gt;",
            '<option selected="selected">10</option>'),
     hides=("<b>10.</b>", "<b>21.</b>"))

# What a result shows.
_row("Number and title", "vela_query=kingfisher",
     matches=(r'<b>1\.</b>&nbsp;<a href="/events/bird-walk\.html" >Bird walk along the towpath</a>',))
_row("Description", "vela_query=marigolds",
     shows=('<div class="description">Take a packet of seeds in spring, bring some back in autumn: '
            f'beans, {_mark("marigolds")} and heritage tomatoes&#46;</div>',))
_row("Passages around the words", "vela_query=sprinkler",
     shows=(f"customers opened umbrellas beneath a {_mark('sprinkler')}. His daughter Edith",))
_row("Links to the place on a long page", "vela_query=bronze+otter", finds=("/privacy.html#fountain",),
     shows=('<a href="/privacy.html#fountain" >Privacy notice <span class="result_section">&#8250; '
            'The camera at the fountain</span></a>',))
_row("Words marked", "vela_query=elephant",
     shows=(f"A circus {_mark('elephant')} escapes", f"runaway circus {_mark('elephant')} of 1887"))
_row("Words matched and score", "vela_query=lighthouse+keeper",
     matches=(r"Terms matched: 2&nbsp; - &nbsp;Score: [1-9][0-9]*&nbsp;",))
_row("Date, size and address", "vela_query=encyclopaedias",
     shows=("12 Jun 2024&nbsp; - &nbsp;2k&nbsp; - &nbsp;URL: /about/donations.html</div>",))
_row("The page's picture", "vela_query=bookbinding", finds=BOOKBINDING,
     shows=('<div class="result_image"><a href="/events/bookbinding.html" >'
            '<img src="/images/thread.svg" alt="" class="result_image" /></a></div>',))
_row("Facts of a page", "vela_query=bookbinding+afternoon",
     shows=('<span class="result_metaname_when">when: </span>'
            '<span class="result_metavalue_when">8 November 2025, 13:00</span>',
            '<span class="result_metavalue_where">Riverside, Heron room</span>',
            '<span class="result_metavalue_price">£18.00</span>',
            '<span class="result_metavalue_audience">Adults</span>',
            '<span class="result_metavalue_age">16</span>'))
_row("Several choices, one after the other", "vela_query=binder+archive&vela_and=1",
     finds=("/events/bookbinding.html",),
     matches=(r'<span class="result_metavalue_topics">(Crafts, Books|Books, Crafts)</span>',))
_row("Categories of a page", "vela_query=M%C3%A4rchenstunde",
     shows=('<span class="category"> [Children] [Deutsch]</span>',))
_row("Documents in a window of their own", "vela_query=drought",
     shows=('<a href="/history/timeline.txt" target="_blank">',))

# Narrowing down.
_row("Results by category", "vela_query=umbrella", finds=UMBRELLA_PAGES,
     matches=(r'cat_summary">.*>News</a> \(2\)</li>.*>Events</a> \(1\)</li>'
              r'.*>Local history</a> \(6\)</li></ul>',),
     hides=(">Services</a> (",))
_row("One category", "vela_query=umbrella&vela_cat%5B%5D=7",
     finds=tuple(set(UMBRELLA_PAGES) - {"/news/unstaffed-hours.html"}),
     shows=('in the category "Local history"',
            'id="vela_cat7" value="7" checked="checked"'))
_row("Several categories", "vela_query=umbrella&vela_cat%5B%5D=0&vela_cat%5B%5D=1",
     finds=("/news/unstaffed-hours.html", "/news/newspaper-archive.html",
            "/events/genealogy-morning.html"),
     shows=('in the category "News", "Events"',))
_row("More than eight categories", "vela_query=pence&vela_cat%5B%5D=11",
     finds=("/fr/inscription.html",),
     shows=('in the category "Français"',))
_row("From one day to another",
     "vela_query=flood&vela_datefrom=1%2F8%2F2025&vela_dateto=31%2F8%2F2025",
     finds=("/news/riverside-reopens.html", "/branches/riverside.html"),
     shows=('value="1/8/2025"', 'value="31/8/2025"'))
_row("From one second to another",
     "vela_query=flood&vela_ltimefrom=1754006400&vela_ltimeto=1756684799",
     finds=("/news/riverside-reopens.html", "/branches/riverside.html"))
_row("It stays while turning and sorting",
     "vela_query=flood&vela_ltimefrom=1754006400&vela_ltimeto=1756684799&vela_sort=1",
     matches=(r'href="[^"]*vela_ltimefrom=1754006400&amp;vela_ltimeto=1756684799',))
_row("A calendar to pick a day", "vela_query=chess&vela_datefrom=1%2F1%2F2025",
     shows=("displayDatePicker('vela_datefrom', false, 'dmy');", "window.displayDatePicker = ",
            'value="1/1/2025"'))
_row("A fact, with words", "vela_query=lighthouse&audience=2",
     finds=("/events/puppet-theatre.html", "/children/summer-reading.html"),
     shows=('<option value="2" selected="selected">Children</option>',))
_row("Facts alone", "vela_query=&price=0",
     finds=(*(f"/events/{page}.html"
              for page in ("poetry-evening", "repair-evening", "chess", "book-club",
                           "language-cafe", "coding-club", "genealogy-morning")),
            "/children/story-time.html", "/children/summer-reading.html"))
_row("Any of several choices", "vela_query=&topics%5B%5D=5&topics%5B%5D=6",
     finds=("/events/concert.html", "/children/story-time.html", "/events/stargazing.html",
            "/events/bird-walk.html"),
     shows=('<option value="5" selected="selected">Music</option>',
            '<option value="6" selected="selected">Nature</option>'))
_row("Text in a fact", "vela_query=&where=heron+room",
     finds=("/events/repair-evening.html", "/events/bookbinding.html"))
_row("A number up to a limit", "vela_query=&age=3",
     finds=("/events/puppet-theatre.html", "/children/story-time.html"))
_row("Facts together", "vela_query=&when=november&price=5&audience=4",
     finds=("/events/language-cafe.html", "/events/genealogy-morning.html", "/de/lesung.html"))

# Help.
_row("A correction that is certain", "vela_query=geneology",
     matches=(r'These are the results for <b>genealogy</b>[.] [^<]* <a href="[^"]*vela_query='
              r'geneology[^"]*vela_literal=1">geneology</a>',))
_row("Did you mean", "vela_query=geneology&vela_literal=1", finds=(),
     matches=(r'Did you mean <a href="[^"]*vela_query=genealogy[^"]*">genealogy</a>',))
_row("The same among several words", "vela_query=puppet+theater",
     matches=(r'Did you mean <a href="[^"]*vela_query=puppet\+theatre[^"]*">puppet theatre</a>',))
_row("Recommended pages", "vela_query=opening+times",
     shows=('<div class="recommended_heading">Recommended</div>',
            '<div class="recommend_infoline">/hours.html</div>'))
_row("Recommended for a beginning", "vela_query=renewing",
     shows=('<div class="recommend_infoline">/membership/loans.html</div>',))
_row("Recommended with words of its own, and outside the site", "vela_query=audiobooks",
     finds=("/using/ebooks.html", "/using/home-delivery.html", "/news/van-wins-prize.html",
            "/index.html"),
     shows=("4 results found.",
            '<div class="recommend_title"><a href="https://ebooks.example.net/" >'
            f'E&#45;books and {_mark("audiobooks")} for members</a></div>',
            '<div class="recommend_description">Borrow them on the site that we share with other '
            "libraries, with the number of your card&#46;</div>",
            '<div class="recommend_infoline">https://ebooks.example.net/</div>'))
_row("Another word for the same", "vela_query=gramophone",
     finds=("/children/index.html", "/news/music-floor.html", "/news/index.html",
            "/branches/central.html"),
     shows=(f"{_mark('Vinyl')} records come back to the music floor",))
_row("Completion at any word", "vela_query=exch&vela_ac=1",
     shows=("Seed exchange opens in the old card index",), hides=("<html",))
_row("Completion while typing", "vela_query=bo&vela_ac=1",
     matches=(r'<div class="vela_ac_item" onclick="VelaAutoComplete_UseSuggestion\(&quot;'
              r'Bookbinding in an afternoon&quot;\);">',),
     hides=("<html",))
_row("A wider search", "vela_query=haydn+elephant&vela_and=1", finds=(),
     matches=(r'You may find more by searching for <a href="[^"]*vela_and=0[^"]*">'
              r'pages with any of the words</a>\.',))
_row("The other categories", "vela_query=haydn&vela_cat%5B%5D=6", finds=(),
     matches=(r'You may find more by searching for <a href="[^"]*vela_cat=-1[^"]*">'
              r'pages in all categories</a>\.',))

# Other forms of an answer.
NEWS_TITLES = ("News from the library", "Riverside reopens after the flood",
               "Seed exchange opens in the old card index", "Travelling library wins a prize",
               "Fines abolished for everyone under eighteen",
               "Vinyl records come back to the music floor",
               "Alderwick Courier digitised back to 1861", "Millbank opens at seven without staff",
               "Ines Calloway becomes chief librarian")
_row("XML, and RSS for feed readers", "vela_query=site:news&vela_sort=1&vela_xml=1",
     matches=("(?s)" + ".*".join(f"<item>\n.*<title>{title}</title>" for title in NEWS_TITLES),),
     shows=('<rss version="2.0"', "<pubDate>Sat, 30 Aug 2025 12:00:00 UTC</pubDate>"),
     hides=("<?xml-stylesheet",),
     header="Content-type: text/xml; charset=utf-8")
_row("Facts, categories and pictures in XML", "vela_query=bookbinding&vela_xml=1",
     shows=("<vela:imageURL>/images/thread.svg</vela:imageURL>", "<category>Events</category>",
            "<vela:price>£18.00</vela:price>", "<vela:where>Riverside, Heron room</vela:where>",
            "<vela:age>16</vela:age>"))
_row("Words marked in XML", "vela_query=sprinkler&vela_xml=1",
     shows=("beneath a <vela:highlight>sprinkler</vela:highlight>.",))
_row("Counts and place in XML", "vela_query=library&vela_xml=1&vela_page=2",
     shows=("<opensearch:startIndex>11</opensearch:startIndex>",
            "<opensearch:itemsPerPage>10</opensearch:itemsPerPage>"),
     matches=(r"<opensearch:totalResults>[0-9]{2}</opensearch:totalResults>",))
_row("Corrections in XML", "vela_query=geneology&vela_xml=1",
     shows=("<vela:corrected>genealogy</vela:corrected>",))
_row("Suggestions in XML", "vela_query=geneology&vela_literal=1&vela_xml=1",
     shows=("<vela:spelling>genealogy</vela:spelling>",))
_row("Recommended pages in XML", "vela_query=opening+times&vela_xml=1",
     shows=("<vela:recommended>\n", "<title>Opening hours</title>\n<link>/hours.html</link>"))
_row("The settings, for programs", "vela_query=seeds&vela_xml=1&masternode=1",
     shows=('<vela:setting name="UseUTF8" value="1" />',
            '<vela:setting name="SearchMultiCats" value="1" />',
            '<vela:setting name="NumCats" value="12" />',
            "<vela:category>Français</vela:category>", "<vela:datetime>1752494400</vela:datetime>"))
EXPECTED["A search engine for browsers", "/search/vela_opensearch.xml"] = Expected(
    shows=("<ShortName>Alderwick</ShortName>",
           "<Description>Search the pages of Alderwick Public Library</Description>",
           "http://127.0.0.1:8080/search/search.cgi?vela_query={searchTerms}"))

# The page.
_row("The form with all choices", "",
     shows=('name="vela_per_page"', 'name="vela_cat[]" id="vela_cat11"', 'id="vela_datefrom"',
            'id="vela_metaform_when"', '<select multiple id="vela_metaform_topics"',
            'id="vela_metaform_price" name="price" size="7"', 'name="vela_and" value="1"',
            "<title>Search "),
     hides=("searchheading\">",))
_row("A page of the site's own", "vela_query=poetry",
     shows=("<title>Search poetry – Alderwick Public Library</title>",
            '<footer class="site">', "4 Market Square"),
     hides=("<!--VELA",))
_row("How long it took", "vela_query=chess",
     matches=(r"The search took [0-9]+\.[0-9]{3} seconds\.",), hides=("Search powered by",))
_row("Markup in a query stays text", "vela_query=%3Cb%3Elibrary%3C%2Fb%3E",
     shows=('value="&#60;b&#62;library&#60;/b&#62;"',), hides=("<b>library</b>",))
_row("A log of what was searched for", "vela_query=say+%22hi%22&vela_cat%5B%5D=2",
     logged=r'^2[0-9-]{9}, [0-9:]{8}, 127\.0\.0\.1, "say ""hi""", Matches = [0-9]+, OR, '
            r'PerPage = 10, PageNum = 0, "Cat = Services", Time = [0-9.]+, Rec = 0$')

# Switched off in the demo.
_row("Word stems", "vela_query=renewed",
     finds=("/index.html", "/membership/loans.html", "/news/fines-abolished.html"))
_row("Offers as the index has its words", "vela_query=geneology&vela_literal=1", finds=(),
     matches=(r">genealog<",))
_row("Words inside longer words", "vela_query=brella",
     matches=(r"(?s)/events/book-club\.html", r"(?s)/history/timeline\.txt"))
_row("All words unless asked otherwise", "vela_query=telescopes+roof",
     finds=("/events/stargazing.html",), shows=("containing all search terms.",))
_row("Short words passed over", "vela_query=van+weir",
     shows=('These words are too short or too common and were not searched for: "van"',))
_row("Quotation marks without meaning", "vela_query=%22telescope+chess%22",
     finds=(*CHESS_PAGES, "/branches/riverside.html"))
_row("Newest first unless asked otherwise", "vela_query=flood+repairs",
     shows=("Sorted by date, newest first",))
_row("Common words cut short", "vela_query=*a*",
     shows=("This search matches so much that it was stopped early", "More than "))
_row("No results beyond a number", "vela_query=library&vela_page=3",
     shows=("That page lies beyond the last result that a search shows.",))
# The scores of other settings are below a thousand.
_row("Nearness of the words counts", "vela_query=heron+room&vela_and=1",
     matches=(r"Score: [0-9]{4,}",))
_row("One category at a time", "vela_query=umbrella&vela_cat%5B%5D=1",
     shows=('<select name="vela_cat[]" id="vela_cat">',
            '<option value="1" selected="selected">Events</option>'),
     finds=("/events/genealogy-morning.html",))
_row("No counts by category", "vela_query=umbrella", finds=UMBRELLA_PAGES,
     hides=('class="cat_summary"',))
_row("The month first in dates",
     "vela_query=flood&vela_datefrom=8%2F1%2F2025&vela_dateto=8%2F31%2F2025",
     finds=("/news/riverside-reopens.html", "/branches/riverside.html"),
     shows=("displayDatePicker('vela_datefrom', false, 'mdy');",))
_row("Amounts without hundredths", "vela_query=stargazing+telescopes",
     shows=('<span class="result_metavalue_price">£3</span>',))
_row("Another currency", "vela_query=bookbinding",
     shows=('<span class="result_metavalue_price">EUR 18.00</span>', ": </label>EUR <input"))
_row("Shorter addresses", "vela_query=bookbinding", shows=("URL: /events/book...</div>",))
_row("Passages of few words", "vela_query=sprinkler", finds=SPRINKLER,
     shows=(_mark("sprinkler"),), hides=("His daughter",))
_row("No passages", "vela_query=sprinkler", finds=SPRINKLER, hides=('class="context"',))
_row("No marks", "vela_query=elephant", shows=("A circus elephant escapes",),
     hides=('<span class="highlight">',))
_row("No pictures", "vela_query=bookbinding", finds=BOOKBINDING, hides=("<img",))
_row("Pages that mark the words themselves", "vela_query=sprinkler",
     shows=('<a href="/history/building.html?vela_highlight=sprinkler" >',))
_row("Results in another frame", "vela_query=sprinkler",
     shows=('<a href="/history/building.html" target="_top">',))
_row("Links that lead back to a page of the site", "vela_query=library",
     shows=('<a href="/find.php?lang=en&amp;vela_query=library&amp;vela_page=2',))
_row("A style sheet for XML", "vela_query=seeds&vela_xml=1",
     shows=('<?xml-stylesheet type="text/xsl" href="vela_results.xsl"?>',))
_row("XML unless asked otherwise", "vela_query=sprinkler",
     header="Content-type: text/xml; charset=utf-8",
     shows=("<link>/history/building.html</link>", "</rss>"))
_row("Box and button alone", "vela_query=sprinkler", finds=SPRINKLER,
     shows=('<input type="hidden" name="vela_per_page" value="10" />', 'class="vela_searchbox"'),
     hides=("<select", 'id="vela_datefrom"'))
_row("No form", "vela_query=sprinkler", finds=SPRINKLER, hides=("<form", 'class="vela_searchbox"'))
_row("The small template", "vela_query=sprinkler", finds=SPRINKLER,
     shows=("<html",), hides=("Alderwick Public Library, 4 Market Square",))
_row("The template for a frame or an include", "vela_query=sprinkler", finds=SPRINKLER,
     shows=("</form>",), hides=("<html", "<body"))
_row("The default template", "vela_query=sprinkler", finds=SPRINKLER,
     shows=("vela_search.css",), hides=("Alderwick Public Library, 4 Market Square",))
_row("Another language", "vela_query=sprinkler",
     matches=(r'<input type="submit" value="Suchen" class="vela_button" />',))
_row("Another character set", "vela_query=M%E4rchenstunde",
     finds=("/de/kinderbibliothek.html",),
     header="Content-type: text/html; charset=windows-1252",
     shows=("Märchenstunde", "Français"))
_row("No character set in the header", "vela_query=sprinkler", header="Content-type: text/html;")
_row("No time", "vela_query=sprinkler", finds=SPRINKLER, hides=("The search took",))
_row("The engine's line", "vela_query=swan", shows=("Search powered by <a href=",))
_row("No spelling suggestions", "vela_query=geneology", finds=(), hides=("Did you mean",))
_row("No completion", "vela_query=chess", finds=CHESS_PAGES, hides=("VelaAutoComplete",))
_row("No log", "vela_query=chess", is_logged=False)
