// What a page says, by a reference parser's tree: parse5 builds it, the rules of what is text are
// written anew here. A line of JSON for each file named on standard input, as dump_page writes it.
//   node reference.mjs FOLDER_OF_NODE_MODULES <list-of-files
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';
import { createInterface } from 'node:readline';
import { resolve } from 'node:path';

const require = createRequire(resolve(process.argv[2]) + '/');
const { parse } = await import(require.resolve('parse5'));

const HTML = 'http://www.w3.org/1999/xhtml';
const words = (text) => new Set(text.trim().split(/\s+/));
const INLINE = words(`a abbr acronym b bdi bdo big cite code data del dfn em font i ins kbd label
  mark nobr q rb ruby s samp small span strike strong sub sup time tt u var wbr`);
const INVISIBLE = words('script style template noscript rp rt rtc');
const NEVER = words(`script style template noscript iframe noframes noembed object canvas audio
  video select option datalist textarea head nav rp rt rtc`);

const attribute = (node, name) => node.attrs.find((a) => a.name === name)?.value;
const holds = (list, word) => (list ?? '').toLowerCase().split(/[ ,;\t\r\n]+/).includes(word);

// The text as the indexer cleans it, as far as the pages need it.
function clean(text) {
  return text.normalize('NFC')
    .replace(/[\u00AD\u200B\u200E\u200F\u202A-\u202E\u2060\u2066-\u2069\uFEFF\uFFFE\uFFFF]/g, '')
    .replace(/[\u2010\u2011]/g, '-')
    .replace(/[\0-\x20\x7F-\xA0\u1680\u2000-\u200A\u2028\u2029\u202F\u205F\u3000]/g, ' ');
}
const oneLine = (text) => clean(text).split(' ').filter((word) => word !== '').join(' ');

function declarations(style) {
  const values = {};
  const parts = style.toLowerCase().replace(/\/\*[^]*?(\*\/|$)/g, '')
    .match(/(?:"[^"]*("|$)|'[^']*('|$)|\((?:[^)"']|"[^"]*"|'[^']*')*(\)|$)|[^;"'(])+/g) ?? [];
  for (const part of parts) {
    const [, property, value] = part.match(/^\s*([^:]*?)\s*:\s*([^]*?)\s*$/) ?? [];
    if (property === undefined) continue;
    const important = /!\s*important$/.test(value);
    if (values[property]?.important && !important) continue;
    values[property] = { value: value.replace(/\s*!\s*important$/, ''), important };
  }
  return values;
}

function hidden(node) {
  if (node.tagName === 'html' || node.tagName === 'body') return false;
  const attr = attribute(node, 'hidden');
  if (attr !== undefined && attr.toLowerCase() !== 'until-found') return true;
  if ((attribute(node, 'aria-hidden') ?? '').toLowerCase() === 'true') return true;
  const style = declarations(attribute(node, 'style') ?? '');
  return style.display?.value === 'none' || style.visibility?.value === 'hidden';
}

function surrounding(node, ofPage) {
  const role = attribute(node, 'role');
  if (['navigation', 'search', 'menu', 'menubar', 'toolbar'].some((r) => holds(role, r))) {
    return 'navigation';
  }
  if (holds(role, 'banner')) return 'header';
  if (holds(role, 'contentinfo') || holds(role, 'complementary')) return 'frame';
  if (ofPage && node.tagName === 'header') return 'header';
  if (ofPage && (node.tagName === 'footer' || node.tagName === 'aside')) return 'frame';
  return '';
}

function* walk(node) {
  for (const child of node.childNodes ?? []) {
    yield child;
    yield* walk(child);
  }
}

function plainText(node) {
  let text = '';
  for (const inner of walk(node)) {
    // The content of scripts is in their tree, but says nothing.
    if (inner.nodeName === '#text' &&
        !(inner.parentNode.namespaceURI === HTML && ['script', 'style', 'noscript', 'iframe', 'textarea', 'noframes', 'noembed']
          .includes(inner.parentNode.tagName))) {
      text += inner.value;
    }
  }
  return oneLine(text);
}

function metaName(node) {
  const prefixes = { name: '', property: '', itemprop: 'itemprop:', 'http-equiv': 'http-equiv:' };
  for (const [name, prefix] of Object.entries(prefixes)) {
    if (attribute(node, name)) return prefix + attribute(node, name).toLowerCase();
  }
  return '';
}

function addDate(page, prefix, property, text) {
  const name = property.toLowerCase();
  if (!['datepublished', 'datemodified'].includes(name) || page.metas.length === 300) return;
  if (oneLine(text) !== '') page.metas.push([prefix + name, oneLine(text)]);
}

function readHead(document, page) {
  for (const node of walk(document)) {
    if (node.namespaceURI !== HTML) continue;
    switch (node.tagName) {
      case 'title':
        page.title ||= plainText(node);
        break;
      case 'meta': {
        const content = attribute(node, 'content');
        if (content === undefined) break;
        const name = metaName(node);
        if ((name === 'robots' || name === 'velabot') &&
            (holds(content, 'noindex') || holds(content, 'none'))) {
          page.noindex = true;
        }
        if (name === '' || page.metas.length === 300 || Buffer.byteLength(content) > 20000) break;
        if (oneLine(content) !== '') page.metas.push([name, oneLine(content)]);
        break;
      }
      case 'link':
        if (holds(attribute(node, 'rel'), 'canonical')) {
          page.canonical ||= attribute(node, 'href') ?? '';
        }
        break;
      case 'base':
        page.base ||= attribute(node, 'href') ?? '';
        break;
      case 'time':
      {
        const time = attribute(node, 'datetime') ?? plainText(node);
        addDate(page, 'itemprop:', attribute(node, 'itemprop') ?? '', time);
        page.time ||= time;
        break;
      }
      case 'script':
        if ((attribute(node, 'type') ?? '').toLowerCase() !== 'application/ld+json') break;
        for (const property of ['dateModified', 'datePublished']) {
          const [, date] = (node.childNodes[0]?.value ?? '')
            .match(new RegExp(`^[^]*?"${property}"(?:\\s*:\\s*"([^"]*))?`)) ?? [];
          if (date !== undefined) addDate(page, 'json-ld:', property, date);
        }
        break;
    }
  }
}

// `withFrame`: header, footer and asides count.
function collect(document, withFrame, body) {
  let run = [0, ''];
  let hasContent = false;
  let sawHeading = false;
  const append = (text, state) => {
    if (state.level !== run[0]) flush(state.level);
    run[1] += text;
    if (!state.kept && /[^ \t\r\n]/.test(text)) hasContent = true;
  };
  const breakWord = () => {
    if (run[1] !== '' && !run[1].endsWith(' ')) run[1] += ' ';
  };
  const flush = (level) => {
    const text = clean(run[1]);
    if (/[^ ]/.test(text)) body.push([run[0], text]);
    run = [level, ''];
  };
  const inline = (node) => INLINE.has(node.tagName) ||
    (node.namespaceURI === HTML && node.tagName.includes('-') && node.tagName !== 'annotation-xml');
  const visit = (node, state) => {
    for (const child of node.childNodes) {
      if (child.nodeName === '#text') {
        if (!state.out) append(child.value, state);
        continue;
      }
      if (child.tagName === undefined) continue;
      const around = surrounding(child, state.ofPage);
      if (child.tagName === 'a' && !hasContent && state.ofPage &&
          (attribute(child, 'href') ?? '').startsWith('#')) {
        continue;
      }
      const frame = around === 'header' || around === 'frame';
      // The tree inside a frame that does not count is visited for its first h1.
      let out = state.out || (frame && !withFrame);
      const never = NEVER.has(child.tagName) || hidden(child) || around === 'navigation';
      if (never) {
        if (!state.out && !inline(child) && !INVISIBLE.has(child.tagName)) breakWord();
        continue;
      }
      if (['img', 'area'].includes(child.tagName) && child.namespaceURI === HTML) {
        const alt = attribute(child, 'alt') ?? '';
        if (alt !== '' && !out) {
          breakWord();
          append(alt, state);
          breakWord();
        }
        continue;
      }
      let kept = state.kept;
      const inHeader = frame ? around === 'header' && (!state.frame || state.inHeader)
        : state.inHeader;
      if (child.tagName === 'h1' && !sawHeading) {
        sawHeading = true;
        if (out && inHeader) {
          kept = true;
          out = false;
        }
      }
      if (!state.out && !inline(child)) breakWord();
      if (kept && !state.kept) breakWord();
      const heading = child.tagName.match(/^h([1-6])$/);
      const content = ['main', 'article', 'section'].includes(child.tagName) ||
        holds(attribute(child, 'role'), 'main');
      visit(child, {
        out, kept, inHeader,
        frame: state.frame || frame,
        level: heading ? Number(heading[1]) : state.level,
        ofPage: state.ofPage && !content,
      });
      if (!out && !inline(child)) breakWord();
    }
  };
  visit(document, { out: false, kept: false, inHeader: false, frame: false, level: 0, ofPage: true });
  flush(0);
  return hasContent;
}

function readPage(html) {
  const page = { title: '', canonical: '', base: '', time: '', noindex: false, metas: [], body: [] };
  const document = parse(html);
  readHead(document, page);
  if (page.noindex) return page;
  if (!collect(document, false, page.body) || page.body.length === 0) {
    page.body = [];
    collect(document, true, page.body);
  }
  return page;
}

for await (const path of createInterface({ input: process.stdin })) {
  process.stdout.write(JSON.stringify(readPage(readFileSync(path, 'utf8'))) + '\n');
}
