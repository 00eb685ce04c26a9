// vela_autocomplete.js: suggestions below the search box while a visitor types.
//
// The search program writes this into its page; others: <script defer src="..." data-box="ID">.
var VelaAutoComplete_URL;  // if not set, made from the form's address
(function () {
  const PAUSE = 120;  // ms without a key
  const MOST = 8;     // suggestions shown
  const SPOKEN = {
    de: 'Vorschläge', es: 'Sugerencias', it: 'Suggerimenti', nl: 'Suggesties', pl: 'Podpowiedzi',
    pt: 'Sugestões', ru: 'Подсказки', sv: 'Förslag',
  };
  let use = () => {};  // of the box used last

  const set = (element, attributes) => {
    for (const name in attributes) element.setAttribute(name, attributes[name]);
  };

  window.VelaAutoComplete_UseSuggestion = (text) => use(text);

  window.VelaAutoComplete_OnLoad = (id) => {
    const box = document.getElementById(id);
    if (!box || !box.form || box.getAttribute('role')) return;
    const url = VelaAutoComplete_URL || box.form.action.replace(/[?#].*/, '') + '?vela_ac=1';
    const spoken = SPOKEN[document.documentElement.lang.slice(0, 2)] || 'Suggestions';
    const answers = new Map();
    let request, timer, active = -1, typed = '';

    const list = document.createElement('ul');
    const status = document.createElement('div');
    list.id = id + '_list';
    list.hidden = true;
    set(list, { class: 'vela_ac_list', role: 'listbox', 'aria-label': spoken });
    set(status, { class: 'vela_ac_status', role: 'status' });
    set(box, {
      role: 'combobox', autocomplete: 'off', 'aria-autocomplete': 'list',
      'aria-expanded': false, 'aria-controls': list.id,
    });
    box.after(list, status);

    function cancel() {
      clearTimeout(timer);
      const overtaken = request;
      request = null;
      if (overtaken) overtaken.abort();
    }

    function close() {
      cancel();
      list.hidden = true;
      status.textContent = '';
      set(box, { 'aria-expanded': false });
      mark(-1);
    }

    function place() {
      const { offsetLeft: x, offsetTop: y, offsetWidth: w, offsetHeight: h } = box;
      list.style.cssText = `left:${x}px;top:${y + h}px;width:${w}px`;
    }

    function mark(index) {
      active = index;
      [...list.children].forEach((item, i) => set(item, { 'aria-selected': i === index }));
      const item = list.children[index];
      set(box, { 'aria-activedescendant': item ? item.id : '' });
      if (item) item.scrollIntoView({ block: 'nearest' });
    }

    function show(texts) {
      const start = typed.toLowerCase();
      // First what begins with all that was typed, then with its last word.
      const starts = [start, start.split(' ').pop(), ''];
      const rank = (text) => starts.findIndex((s) => text.toLowerCase().startsWith(s));
      const best = texts.filter((text) => text.toLowerCase() !== start)
        .sort((a, b) => rank(a) - rank(b)).slice(0, MOST);
      if (!best.length) return close();
      list.replaceChildren(...best.map((text, i) => {
        const item = document.createElement('li');
        const added = document.createElement('b');
        const kept = rank(text) ? 0 : typed.length;
        added.textContent = text.slice(kept);
        item.append(text.slice(0, kept), added);
        set(item, { id: list.id + i, class: 'vela_ac_item', role: 'option' });
        item.onclick = () => take(text);
        return item;
      }));
      mark(-1);
      place();
      list.hidden = false;
      set(box, { 'aria-expanded': true });
      status.textContent = spoken + ': ' + best.length;
    }

    function ask() {
      cancel();
      use = take;
      typed = box.value.trim().replace(/\s+/g, ' ');
      if (!typed) return close();
      if (answers.has(typed)) return show(answers.get(typed));
      // A link's address is encoded in the page's character set, as a form's is.
      const link = document.createElement('a');
      link.href = url + '&vela_query=' + typed.replace(/[&#+%]/g, encodeURIComponent);
      const mine = request = new XMLHttpRequest();
      mine.onloadend = () => {
        if (mine !== request) return;
        if (mine.status !== 200) return close();
        // A parsed document runs and loads nothing, and only text is taken from it.
        const html = mine.response.replace(/ onclick="[^"]*"/g, '');
        const links = [...new DOMParser().parseFromString(html, 'text/html').links];
        const texts = [...new Set(links.map((a) => a.textContent.trim()))].filter((t) => t);
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
      timer = setTimeout(ask, PAUSE);
    });
    box.addEventListener('blur', close);
    addEventListener('resize', place);
    list.addEventListener('mousedown', (event) => event.preventDefault());
    box.addEventListener('keydown', (event) => {
      if (event.isComposing || event.ctrlKey || event.metaKey) return;
      const key = event.key, last = list.children.length - 1, chosen = list.children[active];
      if (list.hidden) {
        if (key !== 'ArrowDown' && key !== 'ArrowUp') return;
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

  const own = document.currentScript && document.currentScript.dataset.box;
  if (own) VelaAutoComplete_OnLoad(own);
})();
