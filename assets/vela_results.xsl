<?xml version="1.0" encoding="UTF-8"?>
<!-- vela_results.xsl: shows the XML answer of a search as a page, in the look of vela_search.css.
     An index names it in XMLXSLTURL. A feed reader or program that asks for XML never loads it. -->
<xsl:stylesheet version="1.0"
    xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:opensearch="http://a9.com/-/spec/opensearch/1.1/"
    xmlns:vela="https://vela-search.example/ns/response/1.0/"
    exclude-result-prefixes="opensearch vela">
  <xsl:output method="html" encoding="UTF-8" doctype-system="about:legacy-compat"/>

  <xsl:variable name="channel" select="/rss/channel"/>
  <xsl:variable name="query" select="string($channel/vela:searchquery)"/>
  <xsl:variable name="total" select="number($channel/opensearch:totalResults)"/>
  <xsl:variable name="first" select="number($channel/opensearch:startIndex)"/>
  <xsl:variable name="shown" select="count($channel/item)"/>

  <xsl:template match="/">
    <html lang="en" class="vela_page">
      <head>
        <meta name="viewport" content="width=device-width, initial-scale=1"/>
        <meta name="robots" content="noindex"/>
        <title><xsl:value-of select="normalize-space(concat($query, ' ', $channel/title))"/> (XML)</title>
        <link rel="stylesheet" href="vela_search.css"/>
      </head>
      <body>
        <xsl:apply-templates select="$channel"/>
      </body>
    </html>
  </xsl:template>

  <xsl:template match="channel">
    <header class="vela_header">
      <h1>
        <xsl:choose>
          <xsl:when test="normalize-space(link)"><a href="{link}"><xsl:call-template name="name"/></a></xsl:when>
          <xsl:otherwise><xsl:call-template name="name"/></xsl:otherwise>
        </xsl:choose>
      </h1>
      <div role="search">
        <form method="get" action="" class="vela_searchform">
          <div class="vela_bar">
            <label for="vela_searchbox">Search for:</label>
            <input type="text" name="vela_query" id="vela_searchbox" class="vela_searchbox" size="20" value="{$query}"/>
            <input type="hidden" name="vela_xml" value="1"/>
            <input type="submit" class="vela_button" value="Search"/>
          </div>
        </form>
      </div>
      <p class="vela_note">
        <xsl:if test="normalize-space(description)"><xsl:value-of select="description"/> – </xsl:if>
        <xsl:text>This is a feed: its address can be given to a feed reader.</xsl:text>
      </p>
    </header>
    <main class="vela_answer">
      <xsl:apply-templates select="vela:error"/>
      <xsl:if test="opensearch:totalResults">
        <div class="searchheading" role="heading" aria-level="2">
          <xsl:text>Results for: </xsl:text><xsl:value-of select="$query"/>
          <xsl:for-each select="vela:searchcategory[. != 'All']">
            <xsl:choose>
              <xsl:when test="position() = 1"> in </xsl:when>
              <xsl:otherwise>, </xsl:otherwise>
            </xsl:choose>
            <xsl:value-of select="."/>
          </xsl:for-each>
        </div>
        <div class="summary"><xsl:call-template name="counts"/></div>
      </xsl:if>
      <xsl:if test="vela:corrected">
        <div class="suggestion">
          <xsl:text>Nothing was found as it was typed. These are the results for </xsl:text>
          <b><xsl:value-of select="vela:corrected"/></b>
          <xsl:text>.</xsl:text>
        </div>
      </xsl:if>
      <xsl:if test="vela:spelling">
        <div class="suggestion">
          <xsl:text>Did you mean </xsl:text>
          <xsl:for-each select="vela:spelling">
            <xsl:if test="position() != 1"> or </xsl:if>
            <b><xsl:value-of select="."/></b>
          </xsl:for-each>
          <xsl:text>?</xsl:text>
        </div>
      </xsl:if>
      <xsl:if test="vela:categorySummary">
        <div class="cat_summary">
          <xsl:text>Results by category:</xsl:text>
          <ul>
            <xsl:for-each select="vela:categorySummary">
              <li><xsl:value-of select="vela:categoryName"/> (<xsl:value-of select="vela:categoryCount"/>)</li>
            </xsl:for-each>
          </ul>
        </div>
      </xsl:if>
      <xsl:if test="vela:recommended">
        <div class="recommended">
          <div class="recommended_heading">Recommended</div>
          <xsl:apply-templates select="vela:recommended"/>
        </div>
      </xsl:if>
      <xsl:if test="item">
        <div class="results"><xsl:apply-templates select="item"/></div>
      </xsl:if>
      <xsl:if test="$total &gt; $shown and $shown &gt; 0">
        <!-- The links keep the rest of the address as it is, which only a script can see. The answer to
             a form sent with POST has no query there; what was searched for is in the box. -->
        <div class="result_pages" id="vela_pages" data-first="{$first}" data-per-page="{opensearch:itemsPerPage}" data-total="{$total}"/>
        <script>
          var pages = document.getElementById('vela_pages');
          var page = Math.floor((pages.dataset.first - 1) / pages.dataset.perPage) + 1;
          var box = document.getElementById('vela_searchbox');
          var asked = /[?&amp;]vela_query=/.test(location.search) ? location.search :
            '?vela_xml=1&amp;vela_query=' + encodeURIComponent(box.value);
          var rest = asked.replace(/([?&amp;])vela_page=[^&amp;]*&amp;?/g, '$1').replace(/&amp;$/, '');
          function link(number, text) {
            var made = document.createElement('a');
            made.href = rest + '&amp;vela_page=' + number;
            made.textContent = text;
            pages.append(made);
          }
          if (page > 1) link(page - 1, '\u00ab Previous');
          pages.append('Page ' + page);
          if (pages.dataset.total > page * pages.dataset.perPage) link(page + 1, 'Next \u00bb');
        </script>
      </xsl:if>
      <xsl:if test="vela:searchtime">
        <div class="searchtime">The search took <xsl:value-of select="vela:searchtime"/> seconds.</div>
      </xsl:if>
    </main>
  </xsl:template>

  <xsl:template name="name">
    <xsl:choose>
      <xsl:when test="normalize-space(title)"><xsl:value-of select="title"/></xsl:when>
      <xsl:otherwise>Search</xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="counts">
    <xsl:choose>
      <xsl:when test="not($total &gt; 0)">No results found.</xsl:when>
      <xsl:when test="$shown = 0"><xsl:value-of select="$total"/> results, none of them on this page.</xsl:when>
      <xsl:when test="$total &gt; $shown">
        <xsl:value-of select="$first"/>–<xsl:value-of select="$first + $shown - 1"/>
        <xsl:text> of </xsl:text><xsl:value-of select="$total"/> results
      </xsl:when>
      <xsl:when test="$total = 1">1 result</xsl:when>
      <xsl:otherwise><xsl:value-of select="$total"/> results</xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template match="vela:error">
    <div class="vela_error" role="alert"><xsl:value-of select="translate(., '&#10;', ' ')"/></div>
  </xsl:template>

  <xsl:template match="vela:recommended">
    <div class="recommend_block">
      <xsl:if test="vela:imageURL">
        <div class="recommend_image"><a href="{link}"><img src="{vela:imageURL}" alt="" class="recommend_image"/></a></div>
      </xsl:if>
      <div class="recommend_title"><a href="{link}"><xsl:call-template name="page_title"/></a></div>
      <div class="recommend_description"><xsl:value-of select="description"/></div>
      <div class="recommend_infoline"><xsl:value-of select="link"/></div>
    </div>
  </xsl:template>

  <xsl:template match="item">
    <div class="result_block">
      <xsl:if test="vela:imageURL">
        <div class="result_image"><a href="{link}"><img src="{vela:imageURL}" alt="" class="result_image"/></a></div>
      </xsl:if>
      <div class="result_title">
        <a href="{link}"><xsl:call-template name="page_title"/></a>
        <xsl:if test="category">
          <span class="category"><xsl:for-each select="category"> [<xsl:value-of select="."/>]</xsl:for-each></span>
        </xsl:if>
      </div>
      <!-- What is left of the vela namespace are the site's own fields. -->
      <xsl:for-each select="vela:*[not(self::vela:imageURL or self::vela:filetype or self::vela:context or self::vela:termsMatched or self::vela:score or self::vela:datetime or self::vela:fileSize)]">
        <div class="result_custommeta">
          <span class="result_metaname_{local-name()}"><xsl:value-of select="local-name()"/>: </span>
          <span class="result_metavalue_{local-name()}"><xsl:value-of select="."/></span>
        </div>
      </xsl:for-each>
      <xsl:if test="description"><div class="description"><xsl:value-of select="description"/></div></xsl:if>
      <xsl:if test="normalize-space(vela:context)">
        <div class="context"><xsl:apply-templates select="vela:context/node()"/></div>
      </xsl:if>
      <div class="infoline"><xsl:call-template name="facts"/></div>
    </div>
  </xsl:template>

  <xsl:template match="vela:highlight"><span class="highlight"><xsl:value-of select="."/></span></xsl:template>

  <xsl:template name="page_title">
    <xsl:choose>
      <xsl:when test="normalize-space(title)"><xsl:value-of select="title"/></xsl:when>
      <xsl:otherwise><xsl:value-of select="link"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- "Sat, 21 Nov 2026 10:15:00 UTC" is shown as its day. The size is in bytes, though a "k" follows. -->
  <xsl:template name="facts">
    <xsl:variable name="bytes" select="number(substring-before(vela:fileSize, 'k'))"/>
    <xsl:if test="pubDate"><xsl:value-of select="substring(substring-after(pubDate, ', '), 1, 11)"/> – </xsl:if>
    <xsl:if test="$bytes &gt; 0">
      <xsl:choose>
        <xsl:when test="$bytes &lt; 2048">1k – </xsl:when>
        <xsl:otherwise><xsl:value-of select="floor($bytes div 1024)"/>k – </xsl:otherwise>
      </xsl:choose>
    </xsl:if>
    <xsl:value-of select="link"/>
  </xsl:template>
</xsl:stylesheet>
