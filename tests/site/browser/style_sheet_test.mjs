// Every class that the programs write has a rule in the style sheets, and the files keep to what is
// said of them.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import path from 'node:path';
import test from 'node:test';
import { assets, project } from './support/environment.mjs';

const asset = (name) => readFileSync(path.join(assets, name), 'utf8');
const styles = ['vela_search.css', 'vela_autocomplete.css', 'vela_datepicker.css'].map(asset).join('\n');

function sources(folder, which = /\.cc$/) {
  return readdirSync(folder, { withFileTypes: true }).flatMap((entry) => {
    const name = path.join(folder, entry.name);
    return entry.isDirectory() ? sources(name, which) : which.test(name) ? [readFileSync(name, 'utf8')] : [];
  });
}

// A class that ends with a field's name is styled by its beginning.
function isStyled(name) {
  const [beginning, rest] = name.split('%s');
  return rest === undefined ? new RegExp(`\\.${name}(?![\\w-])`).test(styles) :
    styles.includes(`[class^="${beginning}"]`);
}

const classesOfTheProgram = () => new Set(sources(path.join(project, 'src'))
  .flatMap((text) => [...text.matchAll(/class=\\"([^"\\]+)\\"/g)]).flatMap((match) => match[1].split(' ')));

test('every class of the program is styled', () => {
  const classes = classesOfTheProgram();
  // If the texts were written another way, the pattern would find nothing and all would be well.
  for (const known of ['result_block', 'result_altblock', 'vela_searchform', 'vela_daterange', 'highlight', 'context',
    'recommended_heading', 'vela_ac_item', 'result_metaname_%s', 'summary']) assert.ok(classes.has(known), known);
  assert.ok(classes.size >= 40, `${classes.size} classes`);
  assert.deepEqual([...classes].filter((name) => !isStyled(name)), []);
});

test('every class and every marker is described', () => {
  const text = readFileSync(path.join(project, 'docs/template.md'), 'utf8');
  const names = [...classesOfTheProgram()].map((name) => name.replace('%s', 'NAME'));
  assert.deepEqual(names.filter((name) => !text.includes(`\`${name}\``)), []);
  const markers = sources(path.join(project, 'src'), /sections\.h$|template\.cc$|template_file\.h$/).join('\n')
    .match(/<!--VELA\w+-->/g);
  assert.equal(new Set(markers).size, 23);
  assert.deepEqual(markers.filter((marker) => !text.includes(`\`${marker}\``)), []);
});

test('every class of the templates is styled', () => {
  const templates = readdirSync(assets).filter((name) => /\.(html|xsl)$/.test(name)).map(asset).join('\n');
  const classes = new Set([...templates.matchAll(/class="([^"{]+)"/g)].flatMap((match) => match[1].split(' ')));
  // They are places for a site's own style.
  const bare = new Set(['vela_answer']);
  assert.deepEqual([...classes].filter((name) => !bare.has(name) && !isStyled(name)), []);
});

test('nothing comes from another machine', () => {
  const files = readdirSync(assets).filter((name) => /\.(css|js|html|xsl)$/.test(name));
  for (const name of files) {
    const text = asset(name).replace(/xmlns(:\w+)?="[^"]*"/g, '');
    for (const foreign of ['http://', 'https://', '"//', '@import', '@font-face', 'url(']) {
      assert.ok(!text.includes(foreign), `${name}: ${foreign}`);
    }
  }
});

test('what goes into every page stays small and cannot end its element', () => {
  for (const name of ['vela_autocomplete.js', 'vela_datepicker.js']) assert.ok(!asset(name).includes('</'), name);
  for (const name of ['vela_autocomplete.css', 'vela_datepicker.css']) assert.ok(!asset(name).includes('<'), name);
  assert.ok(Buffer.byteLength(asset('vela_autocomplete.js')) < 6300);
  assert.ok(Buffer.byteLength(asset('vela_datepicker.js')) < 13000);
  assert.ok(Buffer.byteLength(asset('vela_search.js')) < 10500);  // fetched once
});

test('what goes into every page is read alike in any character set', () => {
  const files = readdirSync(assets).filter((name) => /^vela_.*\.js$|^vela_(autocomplete|datepicker)\.css$/.test(name));
  assert.ok(files.length >= 4, files.join());
  for (const name of files) assert.deepEqual(asset(name).match(/[^\n\x20-\x7e]/g), null, name);
});

test('the program can read the files in lines', () => {
  for (const name of readdirSync(assets).filter((file) => /\.(css|js|html)$/.test(file))) {
    for (const line of asset(name).split('\n')) assert.ok(Buffer.byteLength(line) < 1023, name);
  }
});
