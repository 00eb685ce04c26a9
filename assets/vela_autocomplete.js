// Suggestions below a search box: <script defer src="..." data-box="ID">
var VelaAutoComplete_URL;  // by default the form's
(function () {
  const PAUSE = 120;  // ms
  const MOST = 8;
  const SPOKEN = {  // ASCII
    de: 'Vorschl\xe4ge', es: 'Sugerencias', it: 'Suggerimenti', nl: 'Suggesties', pl: 'Podpowiedzi',
    pt: 'Sugest\xf5es', sv: 'F\xf6rslag',
    cs: 'N\xe1vrhy', tr: '\xd6neriler',
    ar: '\u0627\u0642\u062a\u0631\u0627\u062d\u0627\u062a',
    ja: '\u5019\u88dc',
    uk: '\u041f\u0456\u0434\u043a\u0430\u0437\u043a\u0438',
    zh: '\u5efa\u8bae',
    ru: '\u041f\u043e\u0434\u0441\u043a\u0430\u0437\u043a\u0438',
  };
  let use = () => {};

  const set = (element, attributes) => {
    for (const name in attributes) element.setAttribute(name, attributes[name]);
    return element;
  };
  const make = (tag, attributes) => set(document.createElement(tag), attributes);

  window.VelaAutoComplete_UseSuggestion = (text) => use(text);

  window.VelaAutoComplete_OnLoad = (id) => {
    const box = document.getElementById(id);
    if (!box?.form || box.getAttribute('role')) return;
    const action = box.form.getAttribute('action') || '';
    const url = VelaAutoComplete_URL || action.replace(/[?#].*/, '') + '?vela_ac=1';
    const spoken = SPOKEN[document.documentElement.lang.slice(0, 2)] || 'Suggestions';
    const answers = new Map();
    let request, timer, active = -1, typed = '';

    const list = make('ul', {
      id: id + '_list', hidden: '', class: 'vela_ac_list', role: 'listbox', 'aria-label': spoken,
    });
    const status = make('div', { class: 'vela_ac_status', role: 'status' });
    set(box, {
      role: 'combobox', autocomplete: 'off', 'aria-autocomplete': 'list',
      'aria-expanded': false, 'aria-controls': list.id,
    });
    (box.closest('label') || box).after(list, status);

    function cancel() {
      clearTimeout(timer);
      const old = request;
      request = null;
      old?.abort();
    }

    function close() {
      cancel();
      list.hidden = true;
      status.textContent = '';
      set(box, { 'aria-expanded': false });
      mark(-1);
    }

    function place() {
      const { left: x, bottom: y, width: w } = box.getBoundingClientRect();
      list.style.cssText = `left:0;top:0;width:${w}px`;
      const { left, top } = list.getBoundingClientRect();
      list.style.translate = `${x - left}px ${y + 4 - top}px`;
    }

    function mark(index) {
      active = index;
      const items = [...list.children], item = items[index];
      items.forEach((each, i) => set(each, { 'aria-selected': i === index }));
      set(box, { 'aria-activedescendant': item ? item.id : '' });
      if (!item) return;
      cancel();  // an answer would unmark
      item.scrollIntoView({ block: 'nearest' });
    }

    function show(texts) {
      const start = typed.toLowerCase();
      // What starts with all of it, then with its last word.
      const starts = [start, start.split(' ').pop(), ''];
      const rank = (text) => starts.findIndex((s) => text.toLowerCase().startsWith(s));
      const best = texts.filter((text) => text.toLowerCase() !== start)
        .sort((a, b) => rank(a) - rank(b)).slice(0, MOST);
      if (!best.length) return close();
      list.replaceChildren(...best.map((text, i) => {
        const item = make('li', { id: list.id + i, class: 'vela_ac_item', role: 'option' });
        const added = make('b');
        const kept = rank(text) ? 0 : typed.length;
        added.textContent = text.slice(kept);
        item.append(text.slice(0, kept), added);
        item.onclick = () => take(text);
        return item;
      }));
      mark(-1);
      list.hidden = false;
      place();
      set(box, { 'aria-expanded': true });
      status.textContent = spoken + ': ' + best.length;
    }

    function ask() {
      cancel();
      use = take;
      typed = box.value.trim().replace(/\s+/g, ' ');
      if (!typed) return close();
      if (answers.has(typed)) return show(answers.get(typed));
      // A link is encoded in the page's character set.
      const query = typed.replace(/[&#+%]/g, encodeURIComponent);
      const link = make('a', { href: url + '&vela_query=' + query });
      const mine = request = new XMLHttpRequest();
      mine.onloadend = () => {
        if (mine !== request) return;
        if (mine.status !== 200) return close();
        // Parsing runs nothing; only text is taken.
        const html = mine.response.replace(/ onclick="[^"]*"/g, '');
        const page = new DOMParser().parseFromString(html, 'text/html');
        const links = [...page.querySelectorAll('a.vela_ac_item')];
        const texts = [...new Set(links.map((a) => a.textContent.trim()))].filter(Boolean);
        answers.set(typed, texts);
        show(texts);
      };
      mine.open('GET', link.href);
      mine.send();
    }

    function fill(text) {
      box.value = text;
      close();
    }
    function take(text) {
      fill(text);
      box.form.requestSubmit();
    }

    box.addEventListener('input', () => {
      clearTimeout(timer);
      mark(-1);
      timer = setTimeout(ask, PAUSE);
    });
    box.addEventListener('blur', close);
    addEventListener('resize', place);
    list.addEventListener('mousedown', (event) => event.preventDefault());
    box.addEventListener('keydown', (event) => {
      if (event.isComposing || event.ctrlKey || event.metaKey) return;
      const key = event.key, last = list.children.length - 1, chosen = list.children[active];
      if (list.hidden) {
        if (!/^Arrow(Up|Down)/.test(key)) return;
        ask();
      } else if (key === 'ArrowDown') mark(active < last ? active + 1 : -1);
      else if (key === 'ArrowUp') mark(active < 0 ? last : active - 1);
      else if (key === 'Home' && chosen) mark(0);
      else if (key === 'End' && chosen) mark(last);
      else if (key === 'Enter' && chosen) take(chosen.textContent);
      else if (key === 'Escape') close();
      else {
        if (key === 'Tab' && chosen) fill(chosen.textContent);
        return;
      }
      event.preventDefault();
    });
  };

  const own = document.currentScript?.dataset.box;
  if (own) VelaAutoComplete_OnLoad(own);
})();
