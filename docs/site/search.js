// The search: names of the reference and sections of the guide, from search_index.js, which is read at first use.
'use strict';
{
  const input = document.getElementById('search');
  const list = document.getElementById('found');
  const base = new URL('.', document.currentScript.src);
  const kMost = 30;
  let chosen = -1;
  let loading;

  const load = () => loading ??= new Promise((resolve) => {
    const script = document.createElement('script');
    script.src = new URL('search_index.js', base);
    script.onload = () => resolve(window.searchIndex.map(([title, kind, address, words = '']) =>
      ({title, kind, address, words, name: title.toLowerCase(), text: words.toLowerCase()})));
    document.head.append(script);
  });

  // The better, the smaller; undefined when a word of the query is nowhere.
  const rank = (entry, query, words) => {
    const last = entry.name.slice(entry.name.lastIndexOf(':') + 1);
    if (entry.name === query || last === query) return 0;
    if (last.startsWith(query)) return 1;
    if (entry.name.includes(query)) return 2;
    if (words.every((word) => entry.name.includes(word))) return 3;
    if (entry.text.includes(query)) return 4;
    if (words.every((word) => entry.name.includes(word) || entry.text.includes(word))) return 5;
    return undefined;
  };

  const small = (className, text) => {
    const element = document.createElement('small');
    element.className = className;
    element.textContent = text;
    return element;
  };

  const show = ({title, kind, address, words, text}, query) => {
    const item = document.createElement('li');
    const link = document.createElement('a');
    link.href = new URL(address, base);
    link.setAttribute('role', 'option');
    link.append(title, ' ', small('kind', kind));
    const at = text.includes(query) ? text.indexOf(query) : text.indexOf(query.split(/\s+/)[0]);
    if (at >= 0) link.append(small('around', (at > 30 ? '…' : '') + words.slice(Math.max(0, at - 30), at + 90)));
    item.append(link);
    return item;
  };

  const find = async () => {
    const query = input.value.trim().toLowerCase().replace(/\(\)$/, '');
    const entries = await load();
    chosen = -1;
    const words = query.split(/\s+/);
    const ranked = query === '' ? [] : entries.map((entry) => [rank(entry, query, words), entry])
      .filter(([value]) => value !== undefined)
      .sort(([a, x], [b, y]) => a - b || x.title.length - y.title.length).slice(0, kMost);
    // Words that stand apart count where nothing has them together.
    const hits = ranked.filter(([value]) => value < 5 || ranked[0][0] >= 5);
    list.replaceChildren(...hits.map(([, entry]) => show(entry, query)));
    if (query !== '' && hits.length === 0) {
      const none = document.createElement('li');
      none.textContent = 'Nothing has this text.';
      list.append(none);
    }
    list.hidden = query === '';
    input.setAttribute('aria-expanded', String(!list.hidden));
  };

  const choose = (step) => {
    const links = [...list.querySelectorAll('a')];
    if (links.length === 0) return;
    chosen = (chosen + step + links.length) % links.length;
    links.forEach((link, i) => link.setAttribute('aria-selected', String(i === chosen)));
    links[chosen].scrollIntoView({block: 'nearest'});
  };

  const close = () => {
    list.hidden = true;
    input.setAttribute('aria-expanded', 'false');
  };

  input.addEventListener('focus', load);
  input.addEventListener('input', find);
  input.addEventListener('keydown', (event) => {
    if (event.key === 'ArrowDown' || event.key === 'ArrowUp') {
      choose(event.key === 'ArrowDown' ? 1 : -1);
      event.preventDefault();
    } else if (event.key === 'Enter') {
      list.querySelectorAll('a')[Math.max(chosen, 0)]?.click();
    } else if (event.key === 'Escape') {
      close();
    }
  });
  list.addEventListener('click', close);
  document.addEventListener('click', (event) => {
    if (!event.target.closest('.find')) close();
  });
  document.addEventListener('keydown', (event) => {
    if (event.key !== '/' || event.ctrlKey || event.metaKey || event.target.matches('input, textarea')) return;
    event.preventDefault();
    input.focus();
    input.select();
  });
}
