// SPDX-License-Identifier: BSD-3-Clause
// Search as you type, in names, parameters and descriptions.
'use strict';

(() => {
  const normal = text => text.toLowerCase().replaceAll('colour', 'color');
  /** A name as words: "vhSubAColor_v2" is "sub a color v 2"; "vhrGainScalar_v1" begins with "vhr". */
  const prefix = /^vhr?(?=[A-Z])/;
  const word = /[A-Z][a-z]+|[A-Z]+(?![a-z])|[a-z]+|[0-9]+/g;
  const wordsOf = name => name.replace(prefix, '').match(word).join(' ');

  const read = kind => ([name, group, result, text, fields]) => ({
    name, group, kind, text,
    fields: fields.split(' '),
    plain: normal(name),
    bare: normal(name.replace(prefix, '')),
    words: ` ${normal(wordsOf(name))} `,
    sentence: ' ' + normal(`${text} ${group} ${result} ${kind}`),
  });
  const entries = [...shaders.map(read('')), ...recipes.map(read('recipe'))];

  const inName = (entry, term) =>
    entry.plain === term || entry.bare === term ? 100
    : entry.words.includes(` ${term} `) ? 70
    : entry.bare.startsWith(term) || entry.plain.startsWith(term) ? 60
    : entry.words.includes(' ' + term) ? 50
    : entry.plain.includes(term) ? 30 : 0;
  const inField = (field, term) => {
    const plain = normal(field);
    return plain === term ? 40 : plain.startsWith(term) ? 20 : plain.includes(term) ? 10 : 0;
  };
  const inSentence = (entry, term) =>
    entry.sentence.includes(' ' + term) ? 15 : entry.sentence.includes(term) ? 5 : 0;

  /** What an entry is worth: every term has to be found, the best place of each counts. */
  const match = (entry, terms) => {
    let worth = 0;
    let field = null;
    for (const term of terms) {
      const best = Math.max(inName(entry, term), inSentence(entry, term));
      const candidates = entry.fields.map(name => [inField(name, term), name]);
      const [fieldWorth, name] = candidates.reduce((a, b) => (b[0] > a[0] ? b : a), [0, null]);
      if (fieldWorth > best) field = name;
      if (!Math.max(best, fieldWorth)) return null;
      worth += Math.max(best, fieldWorth);
    }
    return { entry, worth, field };
  };

  const search = text => {
    const terms = normal(text).split(/\s+/).filter(Boolean);
    if (!terms.length) return [];
    return entries.map(entry => match(entry, terms)).filter(Boolean)
      .sort((a, b) => b.worth - a.worth || a.entry.name.length - b.entry.name.length);
  };

  const box = document.getElementById('search');
  const input = document.getElementById('query');
  const found = document.getElementById('found');
  const count = document.getElementById('count');
  const most = 40;
  let active = -1;

  const element = (tag, text, kind) => {
    const made = document.createElement(tag);
    made.textContent = text;
    if (kind) made.className = kind;
    return made;
  };
  const option = ({ entry, field }, index) => {
    const link = element('a', '');
    link.id = `found-${index}`;
    link.href = `${entry.name}.html${field ? `#p-${field}` : ''}`;
    link.tabIndex = -1;
    link.setAttribute('role', 'option');
    const where = element('small', field ? `parameter ${field}` : entry.group);
    if (entry.kind) where.prepend(element('b', entry.kind), ' ');
    link.append(element('code', entry.name), where, element('span', entry.text));
    return link;
  };

  const choose = index => {
    found.children[active]?.setAttribute('aria-selected', 'false');
    active = index;
    const chosen = found.children[active];
    chosen?.setAttribute('aria-selected', 'true');
    chosen?.scrollIntoView({ block: 'nearest' });
    if (chosen) input.setAttribute('aria-activedescendant', chosen.id);
    else input.removeAttribute('aria-activedescendant');
  };
  const open = isOpen => {
    found.hidden = !isOpen;
    input.setAttribute('aria-expanded', isOpen);
    if (!isOpen) choose(-1);
  };
  const show = () => {
    const results = search(input.value);
    const isAsked = input.value.trim() !== '';
    found.replaceChildren(...results.slice(0, most).map(option));
    if (isAsked && !results.length) found.append(element('p', 'Nothing found. Try fewer letters.'));
    found.scrollTop = 0;
    count.textContent = isAsked ? `${results.length} found` : '';
    active = -1;
    open(isAsked);
    if (results.length) choose(0);
  };

  input.addEventListener('input', show);
  input.addEventListener('focus', () => { if (input.value) show(); });
  box.addEventListener('focusout', event => { if (!box.contains(event.relatedTarget)) open(false); });
  found.addEventListener('mousedown', event => event.preventDefault()); // the input keeps the focus
  found.addEventListener('click', () => open(false)); // a parameter may be on this very page

  input.addEventListener('keydown', event => {
    const options = found.querySelectorAll('a').length;
    if (event.key === 'Escape') {
      if (found.hidden) input.blur();
      else open(false);
    } else if ((event.key === 'ArrowDown' || event.key === 'ArrowUp') && input.value) {
      if (found.hidden) show();
      else if (options) choose((active + (event.key === 'ArrowDown' ? 1 : options - 1)) % options);
    } else if (event.key === 'Enter' && active >= 0)
      found.children[active].click();
    else
      return;
    event.preventDefault();
  });
  document.addEventListener('keydown', event => {
    const isTyping = event.target.matches('input, textarea, select, [contenteditable]');
    if (event.key !== '/' || isTyping || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    input.focus();
    input.select();
  });
  box.hidden = false;
})();
