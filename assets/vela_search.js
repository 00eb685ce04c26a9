// vela_search.js: what a page of the search does beyond the form and the answer that the search
// program writes: chips of the filters that hold, few page numbers, a way back from a page that there
// is not, short addresses. Without it the page works as well, with less comfort.
//
// Its words stand on the script element: data-remove, data-beyond, data-first.
(function () {
  'use strict';
  const words = { remove: 'Remove', beyond: 'There are no results on this page.', first: 'To the first page',
    ...document.currentScript.dataset };
  const form = document.querySelector('form.vela_searchform');
  if (!form) return;
  const results = document.querySelector('.results');
  const FAR = 2;       // page numbers farther from the one that is shown give way on a narrow screen,
  const FARTHEST = 3;  // and those farther than this everywhere

  function make(name, attributes, ...content) {
    const made = document.createElement(name);
    for (const key in attributes) made.setAttribute(key, attributes[key]);
    made.append(...content);
    return made;
  }

  // The pieces of this search's address stay as they are: they may be in any character set.
  const pieces = location.search.slice(1).split('&').filter(Boolean);
  const nameOf = (piece) => piece.split('=')[0].replace(/(\[|%5B)(\]|%5D)$/i, '');
  const valueOf = (piece) => piece.slice(piece.indexOf('=') + 1);
  // This search without what `drops` says of a piece, from its first page.
  const searchWithout = (drops, ...more) => '?' + [...pieces.filter((piece) =>
    nameOf(piece) !== 'vela_page' && !drops(nameOf(piece), valueOf(piece))), ...more].join('&');
  const labelOf = (control) => (control.labels[0] ? control.labels[0].textContent.trim() : '');

  function removal(text, href) {
    const link = make('a', { href, title: words.remove }, make('span', {}, text));
    link.append(make('span', { 'aria-hidden': 'true' }, ' \xd7'));
    link.setAttribute('aria-label', text + ' \u2013 ' + words.remove);
    return make('li', { class: 'vela_on' }, link);
  }

  // Category boxes: "all" goes out when another is ticked, and comes back with the last.
  const boxes = form.querySelector('.vela_categories ul');
  if (boxes) {
    boxes.addEventListener('change', (event) => {
      const [all, ...others] = boxes.querySelectorAll('input');
      if (event.target === all) others.forEach((box) => { box.checked = false; });
      all.checked = !others.some((box) => box.checked);
    });
  }

  // What the search was sent with is what the form says before anybody touches it.
  function categories() {
    return [...form.querySelectorAll('.vela_categories :is(input, option)')].map((item) => ({
      value: item.value, text: item.labels ? labelOf(item) : item.text,
      chosen: item.defaultChecked || item.defaultSelected,
    })).filter((category) => category.value !== '-1');
  }
  function fields() {
    const found = [];
    for (const control of form.querySelectorAll('.vela_metaform :is(input, select)')) {
      const name = control.name.replace('[]', '');
      const add = (text, drops) => found.push(removal(labelOf(control) + ' ' + text, searchWithout(drops)));
      if (control.options) {
        const chosen = [...control.options].filter((option) => option.defaultSelected);
        if (chosen.some((option) => option.value === '-1')) continue;
        for (const { text, value } of chosen) {
          add(text, (piece, its) => piece === name && (!control.multiple || its === value));
        }
      } else {
        const text = control.defaultValue.trim();
        const isNumber = /_(numeric|money)$/.test(control.className);  // other text in one filters nothing
        if (isNumber ? /^[+-]?\d/.test(text) : text) add(text, (piece) => piece === name);
      }
    }
    return found;
  }
  function dates() {
    const ends = ['vela_datefrom', 'vela_dateto'].map((id) => document.getElementById(id));
    const isRange = ends.every((end) => end && /^\d+\/\d+\/\d+/.test(end.defaultValue.trim()));
    if (!isRange) return [];
    const text = ends.map((end) => labelOf(end) + ' ' + end.defaultValue.trim()).join(' ');
    return [removal(text, searchWithout((name) => /^vela_date(from|to)$/.test(name)))];
  }

  // The categories of the form, those chosen with a cross; counts where the program tells them.
  function categoryRow(all) {
    const counts = {};
    const given = document.querySelector('.cat_summary');
    for (const item of given ? given.querySelectorAll('li') : []) {
      counts[item.firstChild.textContent] = item.lastChild.textContent;
    }
    if (given) given.remove();
    const label = labelOf(form.querySelector('.vela_categories :is(input, select)'));
    const list = make('ul', {});
    for (const { value, text, chosen } of all) {
      const drops = (name, its) => name === 'vela_cat' && (!chosen || its === value);
      const item = chosen ? removal(text, searchWithout(drops)) :
        make('li', {}, make('a', { href: searchWithout(drops, 'vela_cat=' + value) }, text));
      if (counts[text]) item.append(counts[text]);
      list.append(item);
    }
    const title = form.querySelector('.vela_categories > label');
    return make('div', { class: 'cat_summary' }, title ? title.textContent : label, list);
  }

  // A template of one marker has no place of its own for the chips.
  let place = document.querySelector('.vela_chosen');
  if (!place && results) {
    place = make('div', { class: 'vela_chosen' });
    (document.querySelector('.cat_summary, .recommended') || results).before(place);
  }
  if (place && results && pieces.length) {
    const all = categories();
    const others = [...fields(), ...dates()];
    const isIn = all.some((category) => category.chosen);
    if (others.length) place.append(make('ul', {}, ...others));
    if (isIn) place.append(categoryRow(all));
    // On a phone the form would push the results out of sight; the chips tell all there.
    const options = form.querySelector('.vela_options');
    if (options && (isIn || others.length) && matchMedia('(min-width: 48rem)').matches) options.open = true;
  }

  // Of an address that is on this host its path is enough, of another the scheme says nothing; and
  // it is read as it was written.
  function readable(path) {
    try {
      return decodeURI(path);
    } catch {
      return path;  // in another character set, or cut inside a character
    }
  }
  for (const line of document.querySelectorAll('.infoline, .recommend_infoline')) {
    const parts = line.textContent.split('\xa0 - \xa0');
    const address = /^(?:.*\s)?(?:https?:\/\/([^/\s]+))?(\/\S*)$/.exec(parts.pop());
    if (!address) continue;
    const [, host, path] = address;
    const shown = make('bdi', {}, (host && host !== location.host ? host : '') + readable(path));
    line.replaceChildren(...parts.flatMap((part) => [part, ' \xb7 ']), shown);
  }

  // Another order begins with its first page.
  for (const link of document.querySelectorAll('.sorting a')) {
    link.href = link.getAttribute('href').replace(/([?&])vela_page=[^&]*&?/, '$1');
  }

  // The program writes "Result pages: << Previous 1 2 3 Next >>", up to ten numbers each way; the
  // number of the page that is shown is bare text.
  const pages = document.querySelector('.result_pages');
  function shortenPages() {
    const links = [...pages.querySelectorAll('a')];
    const bare = [...pages.childNodes].filter((node) => node.nodeType === Node.TEXT_NODE);
    const shown = bare.find((node) => /\d\s*$/.test(node.data));
    if (!shown) return;
    const [, title, digits] = /^(.*?)(\d+)\s*$/s.exec(bare[0] === shown ? shown.data : bare[0].data + shown.data);
    const current = +digits;
    const row = [make('span', { class: 'vela_pages_label' }, title.trim())];
    const turn = (link, sign, isBack) => {
      const word = make('span', { class: 'vela_turn' }, link.textContent.replace(/<<|>>/, '').trim());
      const arrow = make('span', { 'aria-hidden': 'true', class: 'vela_arrow' }, sign);
      link.rel = isBack ? 'prev' : 'next';
      link.replaceChildren(...(isBack ? [arrow, ' ', word] : [word, ' ', arrow]));
      return link;
    };
    const mark = make('span', { class: 'vela_current', 'aria-current': 'page' }, digits);
    let isMarked = false;
    for (const link of links) {
      const text = link.textContent;
      const number = /^\d+$/.test(text) ? +text : null;
      if (!isMarked && (number > current || text.endsWith('>>'))) {
        row.push(mark);
        isMarked = true;
      }
      if (number === null) row.push(turn(link, text.startsWith('<<') ? '\u2039' : '\u203a', text.startsWith('<<')));
      else if (Math.abs(number - current) <= FARTHEST) row.push(link);
      if (number !== null && Math.abs(number - current) > FAR) link.className = 'vela_far';
    }
    if (!isMarked) row.push(mark);
    pages.setAttribute('role', 'navigation');
    pages.setAttribute('aria-label', title.trim().replace(/\s*:$/, ''));
    pages.replaceChildren(...row);
  }

  const page = pieces.find((piece) => nameOf(piece) === 'vela_page');
  const isEmpty = !document.querySelector('.result_block, .result_altblock');
  const note = document.querySelector('.summary');
  // A summary with a number: the search has results, but not here. Beyond the most that is ever
  // shown the program says so itself, and there is no summary.
  if (page && +valueOf(page) > 1 && isEmpty && (!note || (results && /\d/.test(note.textContent)))) {
    const back = make('p', { class: 'vela_beyond' }, ...(note ? [words.beyond, ' '] : []),
      make('a', { href: searchWithout(() => false) }, words.first));
    if (pages) pages.remove();
    if (place && results) place.before(back);
    else (document.querySelector('.vela_answer') || form.parentNode).append(back);
  } else if (pages) {
    shortenPages();
  }

  // Without results the summary asks for words: it belongs to the box.
  const box = document.getElementById('vela_searchbox');
  if (note && !results && box) {
    note.id = 'vela_note';
    note.setAttribute('role', 'alert');
    box.setAttribute('aria-describedby', note.id);
    const bar = box.closest('.vela_bar');
    if (bar) bar.after(note);
  }
})();
