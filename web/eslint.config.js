import { fileURLToPath } from 'node:url';

import js from '@eslint/js';
import ts from 'typescript-eslint';

// Includes run one way, as in the hub: a folder knows those before it in this list.
const folders = ['text', 'api', 'state', 'theme', 'cards', 'widgets', 'views'];
const network = [
  { name: 'fetch', message: 'Only api/ speaks to the hub.' },
  { name: 'WebSocket', message: 'Only api/ speaks to the hub.' },
];

const oneWay = folders.map((folder, place) => ({
  files: [`src/${folder}/**`],
  rules: {
    'no-restricted-imports': [
      'error',
      {
        patterns: folders.slice(place + 1).map((later) => ({
          group: [`**/${later}/*`],
          message: `${folder}/ comes before ${later}/`,
        })),
      },
    ],
  },
}));

export default ts.config(
  { ignores: ['dist', 'node_modules', 'test/out'] },
  js.configs.recommended,
  ...ts.configs.strictTypeChecked,
  {
    languageOptions: {
      parserOptions: {
        projectService: { allowDefaultProject: ['*.js', '*.mjs', 'test/*.mjs', 'bench/*.mjs'] },
        tsconfigRootDir: fileURLToPath(new URL('.', import.meta.url)),
      },
    },
    rules: {
      'max-lines': ['error', 250],
      '@typescript-eslint/unbound-method': 'off', // Lit binds the handlers of its templates
      '@typescript-eslint/restrict-template-expressions': ['error', { allowNumber: true }],
    },
  },
  {
    files: ['src/**'],
    ignores: ['src/api/**'],
    rules: { 'no-restricted-globals': ['error', ...network] },
  },
  ...oneWay,
  { files: ['**/*.{js,mjs}'], ...ts.configs.disableTypeChecked },
  {
    files: ['**/*.{js,mjs}'],
    languageOptions: {
      globals: {
        process: 'readonly',
        console: 'readonly',
        URL: 'readonly',
        TextEncoder: 'readonly',
      },
    },
  },
  { files: ['test/**', 'bench/**'], rules: { '@typescript-eslint/no-floating-promises': 'off' } },
);
