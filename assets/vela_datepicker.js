// vela_datepicker.js: a calendar for the date fields of the search form.
//
// displayDatePicker(field, below, order) opens it. `field` is the id or name of a text field, or the
// field; `below` the element (or its id) that it opens under, false for the field; `order` "mdy" or
// "dmy", the order of the numbers in the field. The names of months, days and buttons, the first day
// of the week and the digits shown follow the page's language.
//
// A date field of the form that holds no date says so, and one end of a range alone gets the other.
(function () {
  'use strict';
  const DAY = 86400000;  // all dates are midnights in UTC, in milliseconds
  const WORDS = {  // to close, and what is no date; in ASCII: the page has any character set
    de: ['Schlie\xdfen', 'Das ist kein Datum. Beispiel:'], es: ['Cerrar', 'No es una fecha. Ejemplo:'],
    fr: ['Fermer', 'Ce n\u2019est pas une date. Exemple\xa0:'], it: ['Chiudi', 'Non \xe8 una data. Esempio:'],
    nl: ['Sluiten', 'Dit is geen datum. Voorbeeld:'], pl: ['Zamknij', 'To nie jest data. Przyk\u0142ad:'],
    pt: ['Fechar', 'N\xe3o \xe9 uma data. Exemplo:'],
    ru: ['\u0417\u0430\u043a\u0440\u044b\u0442\u044c',
      '\u042d\u0442\u043e \u043d\u0435 \u0434\u0430\u0442\u0430. \u041f\u0440\u0438\u043c\u0435\u0440:'],
    sv: ['St\xe4ng', 'Det \xe4r inget datum. Exempel:'], en: ['Close', 'This is no date. Example:'],
  };
  const pageLanguage = document.documentElement.lang;
  const words = WORDS[pageLanguage.slice(0, 2)] || WORDS.en;
  const language = (() => {
    try { return Intl.getCanonicalLocales(pageLanguage)[0]; } catch (e) { return undefined; }
  })();
  const format = (options) =>
    new Intl.DateTimeFormat(language, { timeZone: 'UTC', calendar: 'gregory', ...options });
  const monthTitle = format({ year: 'numeric', month: 'long' });
  const wholeDay = format({ dateStyle: 'full' });
  const number = new Intl.NumberFormat(language, { useGrouping: false });
  const relative = new Intl.RelativeTimeFormat(language, { numeric: 'auto' });

  const element = (wanted) => wanted && wanted.nodeType ? wanted :
    document.getElementById(wanted) || document.getElementsByName(wanted)[0];

  // As Date.UTC, but for the years before 100 too; a day that the month does not have is its last.
  function dateOf(year, month, day) {
    const first = new Date(0);
    first.setUTCFullYear(year, month + 1, 0);
    return first.setUTCDate(Math.min(day, first.getUTCDate()));
  }
  const parts = (date) => {
    const d = new Date(date);
    return [d.getUTCFullYear(), d.getUTCMonth(), d.getUTCDate()];
  };
  function addMonths(date, count) {
    const [year, month, day] = parts(date);
    return dateOf(year, month + count, day);
  }
  function today() {
    const now = new Date();
    return Date.UTC(now.getFullYear(), now.getMonth(), now.getDate());
  }

  // The search program reads numbers with slashes between them, and nothing else.
  function read(field, order) {
    const match = field && /^\s*(\d{1,2})\/(\d{1,2})\/(\d{4})\s*$/.exec(field.value);
    if (!match) return null;
    const [month, day] = order === 'mdy' ? [match[1], match[2]] : [match[2], match[1]];
    const date = dateOf(+match[3], month - 1, +day);
    return parts(date)[1] === month - 1 && parts(date)[2] === +day ? date : null;
  }
  function write(field, order, date) {
    const [year, month, day] = parts(date);
    const two = (n) => String(n).padStart(2, '0');
    const start = order === 'mdy' ? [two(month + 1), two(day)] : [two(day), two(month + 1)];
    field.value = [...start, String(year).padStart(4, '0')].join('/');
    for (const type of ['input', 'change']) field.dispatchEvent(new Event(type, { bubbles: true }));
  }

  // 0 is Sunday. "en" alone does not tell where in the world; the order of the numbers does.
  function firstWeekday(order) {
    if (language && language !== 'en') {
      const locale = new Intl.Locale(language);
      const week = locale.getWeekInfo ? locale.getWeekInfo() : locale.weekInfo;
      if (week) return week.firstDay % 7;
    }
    return order === 'mdy' ? 0 : 1;
  }

  function make(name, attributes, text) {
    const made = document.createElement(name);
    for (const key in attributes) made.setAttribute(key, attributes[key]);
    if (text !== undefined) made.textContent = text;
    return made;
  }

  const isEndField = (field) => /to$/.test(field.id);
  // A range with one end filters nothing, so that the other end is filled in where it is empty.
  function fillOther(field, other, order) {
    const date = read(field, order);
    if (date === null || !other || other.value.trim()) return;
    write(other, order, isEndField(field) ? Math.min(0, date) : Math.max(today(), date));
  }

  // Says at the field that it holds no date, or takes that back. Whether it does say so.
  function isWrong(field, order) {
    const wrong = field.value.trim() !== '' && read(field, order) === null;
    const id = field.id + '_wrong';
    const old = document.getElementById(id);
    if (old) old.remove();
    if (wrong) {
      const button = field.nextElementSibling;
      const example = order === 'mdy' ? '12/31/2026' : '31/12/2026';
      const note = make('span', { id, class: 'vela_dp_wrong', role: 'alert' }, words[1] + ' ' + example);
      (button && button.type === 'button' ? button : field).after(note);
      field.setAttribute('aria-describedby', id);
      field.setAttribute('aria-invalid', 'true');
    } else {
      field.removeAttribute('aria-describedby');
      field.removeAttribute('aria-invalid');
    }
    return wrong;
  }

  document.addEventListener('DOMContentLoaded', () => {
    const fields = ['vela_datefrom', 'vela_dateto'].map((id) => document.getElementById(id));
    const [from, to] = fields;
    if (!from || !to || !from.form) return;
    const button = from.nextElementSibling;
    const order = /'mdy'/.test(button && button.getAttribute('onclick')) ? 'mdy' : 'dmy';
    // The first field that holds no date.
    const tell = () => {
      const [wrong] = fields.filter((field) => isWrong(field, order));
      const folded = wrong && wrong.closest('details');
      if (folded) folded.open = true;
      return wrong;
    };
    tell();
    // A note that comes while a button is being pressed would move it away from under the pointer.
    for (const field of fields) {
      field.addEventListener('input', () => { if (field.ariaInvalid && read(field, order) !== null) isWrong(field, order); });
    }
    from.form.addEventListener('submit', (event) => {
      const wrong = tell();
      if (wrong) {
        event.preventDefault();
        wrong.focus();
        return;
      }
      fillOther(from, to, order);
      fillOther(to, from, order);
    });
  });

  window.displayDatePicker = (fieldName, below, order) => {
    const field = element(fieldName);
    if (!field || document.querySelector('dialog.vela_dp')) return;
    const other = element(/from$/.test(field.id) ? field.id.replace(/from$/, 'to') :
      /to$/.test(field.id) ? field.id.replace(/to$/, 'from') : '');
    const isEnd = isEndField(field);
    const limit = read(other, order);
    const isFree = (date) => limit === null || (isEnd ? date >= limit : date <= limit);
    const now = today();
    const chosen = read(field, order);
    let current = chosen ?? now;
    if (!isFree(current)) current = limit;
    const weekStart = firstWeekday(order);

    const label = field.labels && field.labels[0] ? field.labels[0].textContent.trim() : '';
    const opener = document.activeElement && document.activeElement.type === 'button' ?
      document.activeElement : field.nextElementSibling || field;
    const dialog = make('dialog', { class: 'vela_dp' });
    dialog.setAttribute('aria-label', [opener !== field && opener.value, label].filter(Boolean).join(' \u2013 '));

    function button(name, sign, action) {
      const made = make('button', { type: 'button', 'aria-label': name, title: name }, sign);
      made.onclick = action;
      return made;
    }
    const step = (unit, count, sign) => button(relative.format(count, unit), sign, () =>
      go(addMonths(current, unit === 'year' ? 12 * count : count)));
    const title = make('h2', { 'aria-live': 'polite', class: 'vela_dp_title' });
    const head = make('div', { class: 'vela_dp_head' });
    head.append(step('year', -1, '\xab'), step('month', -1, '\u2039'), title, step('month', 1, '\u203a'),
      step('year', 1, '\xbb'));

    const table = make('table', { role: 'grid' });
    const names = table.createTHead().insertRow();
    for (let i = 0; i < 7; ++i) {
      const day = Date.UTC(2023, 0, 1 + weekStart + i);  // the first was a Sunday
      const cell = make('th', { scope: 'col', abbr: format({ weekday: 'long' }).format(day) },
        format({ weekday: 'short' }).format(day));
      names.append(cell);
    }
    const body = table.createTBody();

    const toDay = make('button', { type: 'button' }, relative.format(0, 'day'));
    toDay.onclick = () => { go(now); focusDay(); };
    toDay.disabled = !isFree(now);
    const leave = make('button', { type: 'button' }, words[0]);
    leave.onclick = () => dialog.close();
    const foot = make('div', { class: 'vela_dp_foot' });
    foot.append(toDay, leave);
    dialog.append(head, table, foot);

    function draw() {
      const [year, month] = parts(current);
      const text = monthTitle.format(current);
      if (title.textContent !== text) title.textContent = text;
      table.setAttribute('aria-label', text);
      const first = dateOf(year, month, 1);
      const before = (new Date(first).getUTCDay() - weekStart + 7) % 7;
      const last = dateOf(year, month, 31);
      const rows = [];
      for (let date = first - before * DAY; date <= last;) {
        const row = make('tr');
        for (let i = 0; i < 7; ++i, date += DAY) row.append(dayCell(date, date < first || date > last));
        rows.push(row);
      }
      body.replaceChildren(...rows);
    }

    function dayCell(date, isOutside) {
      if (isOutside) return make('td');
      const cell = make('td', {
        tabindex: date === current ? 0 : -1, 'aria-label': wholeDay.format(date),
        'aria-selected': date === chosen,
      }, number.format(parts(date)[2]));
      if (date === now) cell.setAttribute('aria-current', 'date');
      if (!isFree(date)) cell.setAttribute('aria-disabled', 'true');
      cell.onclick = () => choose(date);
      return cell;
    }

    function go(date) {
      if (parts(date)[0] < 1 || parts(date)[0] > 9999) return;
      current = isFree(date) ? date : limit;
      draw();
    }
    const focusDay = () => body.querySelector('[tabindex="0"]').focus();

    function choose(date) {
      if (!isFree(date)) return;
      write(field, order, date);
      fillOther(field, other, order);
      dialog.close();
    }

    table.addEventListener('keydown', (event) => {
      if (event.altKey || event.ctrlKey || event.metaKey) return;
      const sideways = getComputedStyle(table).direction === 'rtl' ? -1 : 1;
      const weekday = (new Date(current).getUTCDay() - weekStart + 7) % 7;
      const moves = {
        ArrowLeft: () => current - sideways * DAY, ArrowRight: () => current + sideways * DAY,
        ArrowUp: () => current - 7 * DAY, ArrowDown: () => current + 7 * DAY,
        Home: () => current - weekday * DAY, End: () => current + (6 - weekday) * DAY,
        PageUp: () => addMonths(current, event.shiftKey ? -12 : -1),
        PageDown: () => addMonths(current, event.shiftKey ? 12 : 1),
      };
      if (event.key === 'Enter' || event.key === ' ') choose(current);
      else if (moves[event.key]) { go(moves[event.key]()); focusDay(); }
      else return;
      event.preventDefault();
    });
    // A press beside the calendar closes it.
    dialog.addEventListener('click', (event) => {
      const box = dialog.getBoundingClientRect();
      const inside = event.clientX >= box.left && event.clientX <= box.right &&
        event.clientY >= box.top && event.clientY <= box.bottom;
      if (event.target === dialog && !inside) dialog.close();
    });
    dialog.addEventListener('close', () => {
      dialog.remove();
      opener.focus();
    });

    document.body.append(dialog);
    draw();
    dialog.showModal();
    const place = (element(below) || field).getBoundingClientRect();
    const size = dialog.getBoundingClientRect();
    const rtl = getComputedStyle(dialog).direction === 'rtl';
    const left = rtl ? place.right - size.width : place.left;
    const under = place.bottom + 6;
    const top = under + size.height > innerHeight && place.top - 6 > size.height ?
      place.top - 6 - size.height : Math.min(under, innerHeight - size.height - 8);
    const right = document.documentElement.clientWidth - size.width - 8;
    dialog.style.left = Math.max(8, Math.min(left, right)) + 'px';
    dialog.style.top = Math.max(8, top) + 'px';
    focusDay();
  };
})();
