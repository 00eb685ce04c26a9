// The index that the tests search: the web site of a garden with 26 pages, using every part of a
// search. The word "garden" stands on all pages, so that its results fill three pages of ten.
import { execFileSync } from 'node:child_process';
import { chmodSync, copyFileSync, mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from 'node:fs';
import path from 'node:path';
import { assets, bin, work, writeIndex } from './environment.mjs';

// Texts as language files hold them: lines STR_KEY = "text" for the program, and TEMPLATE_KEY = "text".
function languageLines(file) {
  return readFileSync(file, 'utf8').split('\n').filter((line) => line.startsWith('STR_'))
    .map((line) => `set ${line}`);
}

// A built-in template in English, as vela_index writes it.
function builtIn(template) {
  const english = readFileSync(path.join(assets, 'languages/english.vlang'), 'utf8');
  const words = Object.fromEntries([...english.matchAll(/^(TEMPLATE_\w+) = "(.*)"$/gm)].map((line) => line.slice(1)));
  return readFileSync(path.join(assets, template), 'utf8').replace(/\{\{(\w+)\}\}/g, (_, key) => words[key]);
}

const NONE = '\\x00\\x00\\x00\\x80';
const number = (n) => [0, 8, 16, 24].map((bits) =>
  `\\x${((n >> bits) & 255).toString(16).padStart(2, '0')}`).join('');

// `fields`: year, season (0 spring to 3 winter), colours (0 red, 1 white, 2 blue), price in
// hundredths, gardener.
function meta({ year, season, colours = [], price, gardener = '' } = {}) {
  const byte = (n) => `\\x${n.toString(16).padStart(2, '0')}`;
  return (year === undefined ? NONE : number(year)) + byte(season ?? 255) +
    byte(colours.length) + colours.map(byte).join('') +
    (price === undefined ? NONE : number(price)) + gardener.replaceAll(' ', '\\s') + '\\x00';
}

const day = (text) => Date.parse(`${text}T12:00:00Z`) / 1000;

// A category is a bit: 1 Plants, 2 Visits, 4 Courses.
const PAGES = [
  { url: 'orchard.html', title: 'The old orchard', category: 1, date: '2024-10-02', size: 48200, image: 'apple.svg',
    description: 'Forty kinds of apple and pear, some of them older than the garden itself.',
    text: 'The old orchard lies behind the east wall of the garden. Forty kinds of apple grow here , and the pear trees along the wall are older than the house. In October every visitor may pick an apple.',
    fields: { year: 1897, season: 2, colours: [0, 1], gardener: 'Ida Holm' } },
  { url: 'roses.html', title: 'Rose garden', category: 3, date: '2025-06-11', size: 21100, image: 'rose.svg',
    description: 'Roses in beds of white, red and every shade between, best seen in June.',
    text: 'In the rose garden the beds follow the colours from white to red. A rose needs sun , and the old wall keeps the warmth of the day for the rose beds in the evening.',
    fields: { year: 1912, season: 1, colours: [0, 1], gardener: 'Ben Aldous' } },
  { url: 'visit.html', title: 'Opening hours and tickets', category: 2, date: '2026-03-01', size: 9300,
    description: 'The garden is open every day from nine until dusk. Children come in free.',
    text: 'The garden is open every day from nine until dusk. A ticket for the garden and the glasshouse costs eight euros. Children come in free.',
    fields: { price: 800 } },
  { url: 'pruning.html', title: 'Course: pruning apple trees', category: 4, date: '2026-01-15', size: 15800,
    description: 'A winter day in the orchard for beginners, tools and soup included.',
    text: 'On this course every guest prunes an apple tree in the garden under the eyes of our gardeners. Bring warm clothes. Tools and soup are included.',
    fields: { year: 2026, season: 3, price: 4550, gardener: 'Ida Holm' } },
  { url: 'plan.pdf', title: 'Plan of the garden', category: 2, date: '2023-05-20', size: 912000, type: 4,
    description: '', text: 'Plan of the garden with all paths , benches and fountains.', fields: {} },
  { url: 'glasshouse.html', title: 'The glasshouse, its lilies &amp; its palms', category: 3, date: '2025-02-07', size: 30500, image: 'lily.svg',
    description: 'Under two thousand panes of glass the garden keeps what fears the frost.',
    text: 'The glasshouse keeps what fears the frost. The giant lily of the garden opens at dusk and turns red on its second night.',
    fields: { year: 1884, season: 1, colours: [1, 2], price: 250 } },
];
const HERBS = ['Basil', 'Borage', 'Chervil', 'Chives', 'Coriander', 'Dill', 'Fennel', 'Hyssop', 'Lavender', 'Lemon balm',
  'Lovage', 'Marjoram', 'Mint', 'Oregano', 'Parsley', 'Rosemary', 'Rue', 'Sage', 'Savory', 'Thyme'];
HERBS.forEach((herb, i) => PAGES.push({
  url: `herbs/${herb.toLowerCase().replace(' ', '_')}.html`, title: herb, category: 1, size: 4000 + 700 * i,
  date: `2022-${String(1 + i % 12).padStart(2, '0')}-${String(10 + i % 15)}`,
  description: `How ${herb.toLowerCase()} grows in the herb beds, and what it is good for.`,
  text: `In the herb garden ${herb} stands in the sun. It is sown in spring , and cut before it flowers.`,
  fields: { year: 1960 + i, season: i % 3 },
}));

export const SUGGESTIONS = ['apple trees', 'Apple pie recipe', 'garden', 'garden hours', 'Garden plan', 'garden shop',
  'garden tickets', 'garden tour', 'garden tools', 'garden year', 'gardeners at work', 'glasshouse', 'rose garden', 'Rosemary',
  // What a hostile page could bring into the list of suggestions.
  'evil <img src=x onerror="window.wasRun=1">', 'evil");window.wasRun=2;//', 'evil <script>window.wasRun=3</script>'];

// Words and their places: the dictionary holds words in lower case, with the spellings met.
function wordsOf(pages) {
  const words = new Map();
  const tokens = [];
  const word = (text) => {
    const key = text.toLowerCase();
    if (!words.has(key)) words.set(key, { variants: [], pages: new Map() });
    return words.get(key);
  };
  pages.forEach((page, number) => {
    for (const text of page.title.match(/[\p{L}]+/gu).filter((w) => w !== 'amp')) {
      word(text).pages.set(number, { score: 100, at: null });
    }
    for (const text of page.text.split(' ').flatMap((w) => w.endsWith('.') ? [w.slice(0, -1), '.'] : [w])) {
      if (text === '.' || text === ',') {
        tokens.push(text);
        continue;
      }
      const entry = word(text);
      const key = text.toLowerCase();
      if (text !== key && !entry.variants.includes(text)) entry.variants.push(text);
      tokens.push(text === key ? key : `${key}:${entry.variants.indexOf(text) + 1}`);
      const found = entry.pages.get(number) ?? { score: 20, at: null };
      found.at ??= tokens.length - 1;
      entry.pages.set(number, found);
    }
    tokens.push('0');
  });
  return { words, tokens };
}

const FEATURES = {
  Charset: '"utf-8"', Version: '"7"', UseUTF8: 1, ToLowerSearchWords: 1, MaxMatches: 1000, MinWordLen: 2, VelaInfo: 1,
  DictIDLen: 4, DictReservedLimit: 3, DictReservedSuffixes: 3, DictReservedPrefixes: 3, DictReservedNoSpaces: 3,
  FormFormat: 2, Highlighting: 1, XMLHighlight: 1, DisplayTitle: 1, DisplayNumber: 1, DisplayTerms: 0, DisplayScore: 0,
  DisplayURL: 1, DisplayFilesize: 1, DisplayMetaDesc: 1, DisplayContext: 1, DisplayDate: 1, DisplayCatSummary: 1,
  UseVelaImage: 1, UseDateTime: 1, DateRangeSearch: 1, DateRangeFormat: 0, UseAutoComplete: 1, MaxKeyWordLineLen: 100,
  AllowExactPhrase: 1, MaxContextSeeks: 100, MaxContextKeywords: 3, ContextSize: 24, MaxResultsPerQuery: 1000,
  Spelling: 1, NumSpellings: 2, SpellingWhenLessThan: 1, Recommended: 1, NumRecommended: 2, RecommendedMax: 3, Timing: 1,
  UseCats: 1, SearchMultiCats: 1, NumCats: 3, NumCatBytes: 1,
  UseMetaFields: 1, NumMetaFields: 5, DisplayMetaFields: 1, MetaMoneyShowDec: 1, MetaMoneyCurrency: '"€ "',
  PluginOpenNewWindow: 1, FileTypePluginStart: 4,
  XMLTitle: '"Holm Garden"', XMLDesc: '"Search the garden"', XMLURL: '"/"', XMLXSLTURL: '"vela_results.xsl"',
};

const META_FIELDS = ['0', 'year', 'Planted in', '', '0', '0', '2', 'season', 'Season', '', '0', '4', 'Spring', 'Summer',
  'Autumn', 'Winter', '3', 'colours', 'Colours', '', '0', '3', 'Red', 'White', 'Blue', '4', 'price', 'Price at most', '',
  '1', '0', '1', 'gardener', 'Gardener', '', '0', '0'];

function recipe(settings, language) {
  const { words, tokens } = wordsOf(PAGES);
  const lines = languageLines(language);
  for (const [key, value] of Object.entries({ ...FEATURES, ...settings })) lines.push(`set ${key} = ${value}`);
  lines.push('settings', '|catnames', '|Plants', '|Visits', '|Courses', '|metafields', ...META_FIELDS.map((line) => `|${line}`));
  for (const page of PAGES) {
    const image = page.image ? `/pictures/${page.image}` : '';
    lines.push(`page /${page.url}|${page.title}|${page.description}|${image}| size=${page.size} date=${day(page.date)}` +
      ` type=${page.type ?? 0} cats=${String(page.category).padStart(2, '0')} meta=${meta(page.fields)}`);
  }
  lines.push('word reserved0', 'word reserved1', 'word .', 'word ,');
  for (const [text, entry] of words) {
    const places = [...entry.pages].map(([page, { score, at }]) =>
      at === null ? `${page}:${score}` : `${page}:${score}:01:#${at}`);
    lines.push(`word ${text} ${places.join(' ')}`, ...entry.variants.map((variant) => `variant ${variant}`));
  }
  lines.push(`tokens ${tokens.join(' ')}`, 'tokens 0*40');
  // "gardin" and "roze" sound like "garden" and "rose".
  lines.push('spelling KRTN garden', 'spelling RS rose rosemary', 'recommend 2 hours,tickets,garden', 'recommend 0 apple,pear',
    ...SUGGESTIONS.map((text) => `suggest ${text}`), 'folder logs');
  return lines.join('\n') + '\n';
}

// Writes the index directory NAME with the search program and everything that is served with it.
// `settings` replace those above; `template` is a file of the assets, or a function that makes the
// template from the default one's text. Returns the directory.
export function makeGarden(name, { settings = {}, template = 'search_template.html', language } = {}) {
  const directory = path.join(work, name);
  rmSync(directory, { recursive: true, force: true });
  mkdirSync(directory, { recursive: true });
  const file = path.join(work, `${name}.recipe`);
  writeFileSync(file, recipe(settings, language ?? path.join(assets, 'languages/english.vlang')));
  execFileSync(writeIndex, [file, directory]);
  for (const asset of readdirSync(assets)) {
    if (/\.(css|js|xsl)$/.test(asset)) copyFileSync(path.join(assets, asset), path.join(directory, asset));
  }
  const own = path.join(directory, 'search_template.html');
  writeFileSync(own, typeof template === 'function' ? template(builtIn('search_template.html')) : builtIn(template));
  const program = path.join(directory, 'search.cgi');
  copyFileSync(path.join(bin, 'vela_search'), program);
  chmodSync(program, 0o755);
  return directory;
}
