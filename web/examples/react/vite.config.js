export default { esbuild: { jsx: 'automatic' }, build: { target: ['chrome69', 'firefox60'] } };
