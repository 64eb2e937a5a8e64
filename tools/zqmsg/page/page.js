'use strict';

const message = document.getElementById('message');
const search = document.getElementById('search');
const found = document.getElementById('found');
const nothing = document.getElementById('nothing');
const fieldCount = message.querySelectorAll('.f').length;

const isOpen = (block) => !block.hasAttribute('hidden');

function open(block, wanted) {
  // "until-found": the browser's own search looks into closed blocks too.
  if (wanted) block.removeAttribute('hidden');
  else block.setAttribute('hidden', 'until-found');
  block.previousElementSibling.setAttribute('aria-expanded', String(wanted));
}

// Opens the block with this id, or closes it.
function showdiv(id) {
  const block = document.getElementById(id);
  open(block, !isOpen(block));
}

function openAll(wanted) {
  for (const block of message.querySelectorAll('.b')) open(block, wanted);
}

const matches = (element, text) => element.textContent.toLowerCase().includes(text);

// Leaves what holds `text`, or all of `block` when its heading does; tells how many fields that are.
function filter(block, text, all) {
  let shown = 0;
  for (const child of block.children) {
    const isSection = child.classList.contains('s');
    const isNote = child.classList.contains('none');  // that there are no fields is no field
    const hit = all || text === '' ||
        (!isNote && matches(isSection ? child.querySelector('.t') : child, text));
    if (!isSection) {
      child.hidden = !hit;
      shown += hit && child.classList.contains('f') ? 1 : 0;
      continue;
    }
    const body = child.lastElementChild;
    const inside = filter(body, text, hit);
    child.hidden = !hit && inside === 0;
    shown += inside;
    if (text !== '' && inside > 0) open(body, true);
  }
  return shown;
}

// A closed section says what it begins with.
function addPreview(button) {
  const rows = button.nextElementSibling.querySelectorAll(':scope > .f');
  const preview = document.createElement('small');
  preview.className = 'p';
  preview.textContent = [...rows].slice(0, 3)
      .map((row) => [...row.children].map((part) => part.textContent).join(' ').slice(0, 60)).join(' \u00b7 ');
  button.append(preview);
}

let openBefore = null;  // the blocks that were open when a search began

function searchNow() {
  const text = search.value.trim().toLowerCase();
  if (text !== '' && openBefore === null)
    openBefore = new Set([...message.querySelectorAll('.b')].filter(isOpen));
  if (openBefore !== null)
    for (const block of message.querySelectorAll('.b')) open(block, openBefore.has(block));
  if (text === '') openBefore = null;
  const shown = filter(message, text, false);
  found.value = text === '' ? '' : `${shown} of ${fieldCount} fields`;
  nothing.hidden = text === '' || message.querySelector(':scope > :not([hidden])') !== null;
}

for (const button of message.querySelectorAll('.s > button')) addPreview(button);

let timer = 0;
search.addEventListener('input', () => {
  clearTimeout(timer);
  timer = setTimeout(searchNow, fieldCount > 2000 ? 250 : 0);
});
message.addEventListener('click', (event) => {
  const button = event.target.closest('.s > button');
  if (button !== null) showdiv(button.getAttribute('aria-controls'));
});
message.addEventListener('beforematch', (event) => open(event.target, true));
document.getElementById('expand').addEventListener('click', () => openAll(true));
document.getElementById('collapse').addEventListener('click', () => openAll(false));
document.addEventListener('keydown', (event) => {
  if (event.key === '/' && document.activeElement !== search) {
    event.preventDefault();
    search.focus();
  } else if (event.key === 'Escape' && document.activeElement === search) {
    search.value = '';
    searchNow();
  }
});
